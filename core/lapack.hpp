#pragma once
// Declarations of the LAPACK routines Orvane calls, as OpenBLAS exports them
// (reference LAPACK compiled by gfortran). All arguments are passed by address,
// matrices are column-major, and every CHARACTER argument has a hidden length
// argument appended at the end of the list (gfortran's calling convention);
// callers pass 1 for each. The complex type is std::complex<double>, which has
// the layout of Fortran's COMPLEX*16.
#include <complex>
#include <cstddef>

namespace orvane::lapack {

using Complex = std::complex<double>;
using FortranLength = std::size_t;  // hidden length of a CHARACTER*1 argument

// Spare columns allocated after every matrix, work array and tau vector handed
// to LAPACK. The complex matrix-vector kernels of OpenBLAS 0.3.21 (zgemv and
// zhemv, Haswell/Zen build) read past the last element of a strided vector (up
// to about one column) and past zhemv's result vector, as zhetrd passes them.
// Observed with valgrind (reads past the end of the work array and of tau) and
// as a fault at order 3501 (reads past the end of the matrix). The reads do not
// change results; the padding keeps them inside memory we own.
inline constexpr int kPaddingColumns = 4;

}  // namespace orvane::lapack

extern "C" {

// Reduction of a complex Hermitian matrix to real symmetric tridiagonal form
// Q^H A Q = T by unitary Householder reflectors.
void zhetrd_(const char* uplo, const int* n, orvane::lapack::Complex* a, const int* lda,
             double* d, double* e, orvane::lapack::Complex* tau,
             orvane::lapack::Complex* work, const int* lwork, int* info,
             orvane::lapack::FortranLength uploLength);

// Multiplication of a complex matrix by the Q of zhetrd (in blocked form).
void zunmtr_(const char* side, const char* uplo, const char* trans, const int* m, const int* n,
             const orvane::lapack::Complex* a, const int* lda,
             const orvane::lapack::Complex* tau, orvane::lapack::Complex* c, const int* ldc,
             orvane::lapack::Complex* work, const int* lwork, int* info,
             orvane::lapack::FortranLength sideLength, orvane::lapack::FortranLength uploLength,
             orvane::lapack::FortranLength transLength);

// Application of one elementary reflector H = I - tau v v^H to a matrix.
void zlarf_(const char* side, const int* m, const int* n, const orvane::lapack::Complex* v,
            const int* incv, const orvane::lapack::Complex* tau, orvane::lapack::Complex* c,
            const int* ldc, orvane::lapack::Complex* work,
            orvane::lapack::FortranLength sideLength);

// Triangular factor T of a block of reflectors (H = I - V T V^H).
void zlarft_(const char* direct, const char* storev, const int* n, const int* k,
             const orvane::lapack::Complex* v, const int* ldv,
             const orvane::lapack::Complex* tau, orvane::lapack::Complex* t, const int* ldt,
             orvane::lapack::FortranLength directLength,
             orvane::lapack::FortranLength storevLength);

// Application of a block of reflectors (from zlarft) to a matrix.
void zlarfb_(const char* side, const char* trans, const char* direct, const char* storev,
             const int* m, const int* n, const int* k, const orvane::lapack::Complex* v,
             const int* ldv, const orvane::lapack::Complex* t, const int* ldt,
             orvane::lapack::Complex* c, const int* ldc, orvane::lapack::Complex* work,
             const int* ldwork, orvane::lapack::FortranLength sideLength,
             orvane::lapack::FortranLength transLength,
             orvane::lapack::FortranLength directLength,
             orvane::lapack::FortranLength storevLength);

// Eigenvalues and eigenvectors of a real symmetric tridiagonal matrix by
// divide and conquer (compz = 'I': vectors of the tridiagonal itself).
void dstedc_(const char* compz, const int* n, double* d, double* e, double* z, const int* ldz,
             double* work, const int* lwork, int* iwork, const int* liwork, int* info,
             orvane::lapack::FortranLength compzLength);

// Eigenvalues (and optionally vectors) of a real symmetric tridiagonal matrix
// by the implicit QL/QR algorithm.
void dsteqr_(const char* compz, const int* n, double* d, double* e, double* z, const int* ldz,
             double* work, int* info, orvane::lapack::FortranLength compzLength);

// Eigenvalues only of a real symmetric tridiagonal matrix (root-free QL/QR).
void dsterf_(const int* n, double* d, double* e, int* info);

// Eigenvalues and eigenvectors of a real symmetric matrix by divide and conquer.
void dsyevd_(const char* jobz, const char* uplo, const int* n, double* a, const int* lda, double* w,
             double* work, const int* lwork, int* iwork, const int* liwork, int* info,
             orvane::lapack::FortranLength jobzLength, orvane::lapack::FortranLength uploLength);
// Selected eigenvalues and eigenvectors of a real symmetric matrix (MRRR).
void dsyevr_(const char* jobz, const char* range, const char* uplo, const int* n, double* a,
             const int* lda, const double* vl, const double* vu, const int* il, const int* iu,
             const double* abstol, int* m, double* w, double* z, const int* ldz, int* isuppz,
             double* work, const int* lwork, int* iwork, const int* liwork, int* info,
             orvane::lapack::FortranLength jobzLength, orvane::lapack::FortranLength rangeLength,
             orvane::lapack::FortranLength uploLength);

// Selected eigenvalues and eigenvectors of a complex Hermitian matrix (MRRR).
void zheevr_(const char* jobz, const char* range, const char* uplo, const int* n,
             orvane::lapack::Complex* a, const int* lda, const double* vl, const double* vu,
             const int* il, const int* iu, const double* abstol, int* m, double* w,
             orvane::lapack::Complex* z, const int* ldz, int* isuppz,
             orvane::lapack::Complex* work, const int* lwork, double* rwork, const int* lrwork,
             int* iwork, const int* liwork, int* info, orvane::lapack::FortranLength jobzLength,
             orvane::lapack::FortranLength rangeLength,
             orvane::lapack::FortranLength uploLength);

// Eigenvalues and eigenvectors of a complex Hermitian matrix by divide and conquer.
void zheevd_(const char* jobz, const char* uplo, const int* n, orvane::lapack::Complex* a, const int* lda,
             double* w, orvane::lapack::Complex* work, const int* lwork, double* rwork, const int* lrwork,
             int* iwork, const int* liwork, int* info, orvane::lapack::FortranLength jobzLength,
             orvane::lapack::FortranLength uploLength);

}  // extern "C"
