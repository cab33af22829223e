#pragma once
// OpenBLAS on one thread for a scope: where several threads of ours each call
// LAPACK on small blocks (a differential-evolution generation), OpenBLAS's own
// threads would compete with them and spin (measured: a Pr3+ search took 47 s
// with them against 1.1 s without). The previous thread count is put back
// when the scope ends.
namespace orvane {

class SingleThreadedBlas {
public:
    SingleThreadedBlas();
    ~SingleThreadedBlas();
    SingleThreadedBlas(const SingleThreadedBlas&) = delete;
    SingleThreadedBlas& operator=(const SingleThreadedBlas&) = delete;

private:
    int previous_;
};

}  // namespace orvane
