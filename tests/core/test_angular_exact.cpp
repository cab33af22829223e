// The floating-point 3j, 6j and 9j symbols against an exact evaluation.
//
// The exact evaluator below works on integers only: every factorial is a
// vector of prime exponents (Legendre's formula), every Racah sum is brought to
// a common prime-power factor and added as a big integer, so the cancellation
// that costs the double-precision sums their digits cannot happen here. A
// symbol comes out as  N x prod p^f x sqrt(prod p^r)  with N a big integer, and
// only the final conversion to a number rounds (relative error ~1e-18 in long
// double). The formulas are the standard ones (Edmonds 1957, sections 3.7,
// 6.3 and 6.4); the point of the comparison is the arithmetic, the summation
// ranges and the phases of the production code.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "core/angular.hpp"

namespace {

constexpr std::array<int, 30> kPrimes = {2,  3,  5,  7,  11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47,
                                         53, 59, 61, 67, 71, 73, 79, 83, 89, 97, 101, 103, 107, 109, 113};
constexpr int kLargestFactorial = 126;  // every prime up to it is in kPrimes

using Exponents = std::array<int, kPrimes.size()>;

Exponents operator+(Exponents a, const Exponents& b) {
    for (std::size_t i = 0; i < a.size(); ++i) a[i] += b[i];
    return a;
}
Exponents operator-(Exponents a, const Exponents& b) {
    for (std::size_t i = 0; i < a.size(); ++i) a[i] -= b[i];
    return a;
}

// Legendre's formula: the exponent of p in n! is sum_k floor(n / p^k).
Exponents factorialExponents(int n) {
    if (n < 0 || n > kLargestFactorial) throw std::logic_error("factorial outside the exact range");
    static const std::vector<Exponents> cache = [] {
        std::vector<Exponents> all(kLargestFactorial + 1);
        for (int m = 0; m <= kLargestFactorial; ++m)
            for (std::size_t i = 0; i < kPrimes.size(); ++i)
                for (int power = kPrimes[i]; power <= m; power *= kPrimes[i]) all[m][i] += m / power;
        return all;
    }();
    return cache[static_cast<std::size_t>(n)];
}

// A signed big integer in base 2^32, little-endian magnitude.
struct BigInt {
    bool negative = false;
    std::vector<std::uint32_t> limbs;  // empty is zero

    bool isZero() const { return limbs.empty(); }
    void trim() {
        while (!limbs.empty() && limbs.back() == 0) limbs.pop_back();
        if (limbs.empty()) negative = false;
    }
    void multiplySmall(std::uint32_t factor) {
        std::uint64_t carry = 0;
        for (auto& limb : limbs) {
            const std::uint64_t product = static_cast<std::uint64_t>(limb) * factor + carry;
            limb = static_cast<std::uint32_t>(product);
            carry = product >> 32;
        }
        if (carry != 0) limbs.push_back(static_cast<std::uint32_t>(carry));
        trim();
    }
    long double toLongDouble() const {
        long double value = 0.0L;
        for (std::size_t i = limbs.size(); i-- > 0;) value = value * 4294967296.0L + limbs[i];
        return negative ? -value : value;
    }
};

BigInt bigOne(bool negative) {
    BigInt one;
    one.limbs = {1};
    one.negative = negative;
    return one;
}

int compareMagnitude(const BigInt& a, const BigInt& b) {
    if (a.limbs.size() != b.limbs.size()) return a.limbs.size() < b.limbs.size() ? -1 : 1;
    for (std::size_t i = a.limbs.size(); i-- > 0;)
        if (a.limbs[i] != b.limbs[i]) return a.limbs[i] < b.limbs[i] ? -1 : 1;
    return 0;
}

// |a| + |b| or |a| - |b| (the latter with |a| >= |b|).
std::vector<std::uint32_t> addMagnitudes(const BigInt& a, const BigInt& b) {
    std::vector<std::uint32_t> out(std::max(a.limbs.size(), b.limbs.size()) + 1, 0);
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i + 1 < out.size(); ++i) {
        const std::uint64_t sum = carry + (i < a.limbs.size() ? a.limbs[i] : 0) +
                                  (i < b.limbs.size() ? b.limbs[i] : 0);
        out[i] = static_cast<std::uint32_t>(sum);
        carry = sum >> 32;
    }
    out.back() = static_cast<std::uint32_t>(carry);
    return out;
}
std::vector<std::uint32_t> subtractMagnitudes(const BigInt& a, const BigInt& b) {
    std::vector<std::uint32_t> out(a.limbs.size(), 0);
    std::int64_t borrow = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        std::int64_t difference = static_cast<std::int64_t>(a.limbs[i]) - borrow -
                                  (i < b.limbs.size() ? static_cast<std::int64_t>(b.limbs[i]) : 0);
        borrow = difference < 0 ? 1 : 0;
        if (difference < 0) difference += (std::int64_t{1} << 32);
        out[i] = static_cast<std::uint32_t>(difference);
    }
    return out;
}

BigInt operator+(const BigInt& a, const BigInt& b) {
    BigInt result;
    if (a.negative == b.negative) {
        result.limbs = addMagnitudes(a, b);
        result.negative = a.negative;
    } else if (compareMagnitude(a, b) >= 0) {
        result.limbs = subtractMagnitudes(a, b);
        result.negative = a.negative;
    } else {
        result.limbs = subtractMagnitudes(b, a);
        result.negative = b.negative;
    }
    result.trim();
    return result;
}

BigInt operator*(const BigInt& a, const BigInt& b) {
    BigInt result;
    if (a.isZero() || b.isZero()) return result;
    std::vector<std::uint64_t> wide(a.limbs.size() + b.limbs.size() + 1, 0);
    for (std::size_t i = 0; i < a.limbs.size(); ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < b.limbs.size(); ++j) {
            const std::uint64_t current =
                wide[i + j] + static_cast<std::uint64_t>(a.limbs[i]) * b.limbs[j] + carry;
            wide[i + j] = current & 0xffffffffULL;
            carry = current >> 32;
        }
        std::size_t k = i + b.limbs.size();
        while (carry != 0) {
            const std::uint64_t current = wide[k] + carry;
            wide[k] = current & 0xffffffffULL;
            carry = current >> 32;
            ++k;
        }
    }
    result.limbs.assign(wide.begin(), wide.end());
    result.negative = a.negative != b.negative;
    result.trim();
    return result;
}

// N x prod p^e: an exact rational number.
struct Rational {
    BigInt numerator;
    Exponents powers{};
};

// The sum of signed rationals: all terms are brought to the common (smallest)
// power of each prime and added as integers.
Rational exactSum(const std::vector<Rational>& terms) {
    Rational sum;
    if (terms.empty()) return sum;
    sum.powers = terms.front().powers;
    for (const auto& term : terms)
        for (std::size_t i = 0; i < kPrimes.size(); ++i)
            sum.powers[i] = std::min(sum.powers[i], term.powers[i]);
    for (const auto& term : terms) {
        BigInt scaled = term.numerator;
        for (std::size_t i = 0; i < kPrimes.size(); ++i)
            for (int k = term.powers[i] - sum.powers[i]; k > 0; --k)
                scaled.multiplySmall(static_cast<std::uint32_t>(kPrimes[i]));
        sum.numerator = sum.numerator + scaled;
    }
    return sum;
}

// An exact symbol: value x sqrt(prod p^rootPowers).
struct ExactSymbol {
    Rational value;
    Exponents rootPowers{};

    bool isZero() const { return value.numerator.isZero(); }
    double toDouble() const {
        if (isZero()) return 0.0;
        long double logScale = 0.0L;
        for (std::size_t i = 0; i < kPrimes.size(); ++i)
            logScale += (value.powers[i] + 0.5L * rootPowers[i]) * std::log(static_cast<long double>(kPrimes[i]));
        return static_cast<double>(value.numerator.toLongDouble() * std::exp(logScale));
    }
};

bool odd(int n) { return (n & 1) != 0; }

bool triad(int a, int b, int c) {
    return a >= 0 && b >= 0 && c >= 0 && !odd(a + b + c) && c >= std::abs(a - b) && c <= a + b;
}

// Delta(abc)^2 as prime exponents (twice-J arguments).
Exponents triangleSquared(int a, int b, int c) {
    return factorialExponents((a + b - c) / 2) + factorialExponents((a - b + c) / 2) +
           factorialExponents((-a + b + c) / 2) - factorialExponents((a + b + c) / 2 + 1);
}

// Racah's 3j sum (Edmonds 1957, section 3.7), exactly.
ExactSymbol exactThreeJ(int j1, int j2, int j3, int m1, int m2, int m3) {
    ExactSymbol symbol;
    if (m1 + m2 + m3 != 0 || !triad(j1, j2, j3)) return symbol;
    for (const auto& [j, m] : {std::pair{j1, m1}, std::pair{j2, m2}, std::pair{j3, m3}})
        if (std::abs(m) > j || odd(j + m)) return symbol;
    std::vector<Rational> terms;
    for (int t = 0;; ++t) {
        const int args[6] = {t, (j3 - j2 + m1) / 2 + t, (j3 - j1 - m2) / 2 + t, (j1 + j2 - j3) / 2 - t,
                             (j1 - m1) / 2 - t, (j2 + m2) / 2 - t};
        if (args[3] < 0 || args[4] < 0 || args[5] < 0) break;
        if (args[1] < 0 || args[2] < 0) continue;
        Rational term{bigOne(odd(t)), {}};
        for (const int a : args) term.powers = term.powers - factorialExponents(a);
        terms.push_back(term);
    }
    symbol.value = exactSum(terms);
    if (odd((j1 - j2 - m3) / 2)) symbol.value.numerator.negative = !symbol.value.numerator.negative;
    symbol.value.numerator.trim();
    symbol.rootPowers = triangleSquared(j1, j2, j3);
    for (const auto& [j, m] : {std::pair{j1, m1}, std::pair{j2, m2}, std::pair{j3, m3}})
        symbol.rootPowers = symbol.rootPowers + factorialExponents((j + m) / 2) + factorialExponents((j - m) / 2);
    return symbol;
}

// Racah's 6j sum (Edmonds 1957, section 6.3), exactly.
ExactSymbol exactSixJ(int j1, int j2, int j3, int j4, int j5, int j6) {
    ExactSymbol symbol;
    if (!triad(j1, j2, j3) || !triad(j1, j5, j6) || !triad(j4, j2, j6) || !triad(j4, j5, j3)) return symbol;
    const int a[4] = {(j1 + j2 + j3) / 2, (j1 + j5 + j6) / 2, (j4 + j2 + j6) / 2, (j4 + j5 + j3) / 2};
    const int b[3] = {(j1 + j2 + j4 + j5) / 2, (j2 + j3 + j5 + j6) / 2, (j3 + j1 + j6 + j4) / 2};
    std::vector<Rational> terms;
    for (int t = *std::max_element(a, a + 4); t <= *std::min_element(b, b + 3); ++t) {
        Rational term{bigOne(odd(t)), factorialExponents(t + 1)};
        for (const int ai : a) term.powers = term.powers - factorialExponents(t - ai);
        for (const int bi : b) term.powers = term.powers - factorialExponents(bi - t);
        terms.push_back(term);
    }
    symbol.value = exactSum(terms);
    symbol.rootPowers = triangleSquared(j1, j2, j3) + triangleSquared(j1, j5, j6) +
                        triangleSquared(j4, j2, j6) + triangleSquared(j4, j5, j3);
    return symbol;
}

// The 9j as a sum of three 6j (Edmonds 1957, section 6.4), exactly: the x-dependent triangle factors of the three 6j
// symbols come in squares, so the sum over x is a sum of rationals times the
// root of the six row and column triangles.
ExactSymbol exactNineJ(const std::array<int, 9>& j) {
    ExactSymbol symbol;
    const int rows[6][3] = {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {0, 3, 6}, {1, 4, 7}, {2, 5, 8}};
    for (const auto& r : rows)
        if (!triad(j[r[0]], j[r[1]], j[r[2]])) return symbol;
    Exponents root{};
    for (const auto& r : rows) root = root + triangleSquared(j[r[0]], j[r[1]], j[r[2]]);
    const int xMin = std::max({std::abs(j[3] - j[7]), std::abs(j[0] - j[8]), std::abs(j[1] - j[5])});
    const int xMax = std::min({j[3] + j[7], j[0] + j[8], j[1] + j[5]});
    std::vector<Rational> terms;
    // The 6j symbols repeat across 9j symbols: each is evaluated once.
    static std::map<std::array<int, 6>, ExactSymbol> sixJ;
    auto cached = [](int a, int b, int c, int d, int e, int f) -> const ExactSymbol& {
        const std::array<int, 6> key{a, b, c, d, e, f};
        auto found = sixJ.find(key);
        if (found == sixJ.end()) found = sixJ.emplace(key, exactSixJ(a, b, c, d, e, f)).first;
        return found->second;
    };
    for (int x = xMin; x <= xMax; x += 2) {
        const ExactSymbol& a = cached(j[0], j[3], j[6], j[7], j[8], x);
        const ExactSymbol& b = cached(j[1], j[4], j[7], j[3], x, j[5]);
        const ExactSymbol& c = cached(j[2], j[5], j[8], x, j[0], j[1]);
        if (a.isZero() || b.isZero() || c.isZero()) continue;
        Rational term;
        term.numerator = a.value.numerator * b.value.numerator * c.value.numerator;
        term.numerator.multiplySmall(static_cast<std::uint32_t>(x + 1));
        if (odd(x)) term.numerator.negative = !term.numerator.negative;
        const Exponents extra = a.rootPowers + b.rootPowers + c.rootPowers - root;
        term.powers = a.value.powers + b.value.powers + c.value.powers;
        for (std::size_t i = 0; i < kPrimes.size(); ++i) {
            if (odd(extra[i])) throw std::logic_error("9j root factors do not pair up");
            term.powers[i] += extra[i] / 2;
        }
        terms.push_back(term);
    }
    symbol.value = exactSum(terms);
    symbol.rootPowers = root;
    return symbol;
}

// Agreement of a computed symbol with the exact one: 1e-12 relative, and for
// exact zeros (including the non-trivial ones) an absolute 1e-14.
struct Agreement {
    long count = 0;
    long failures = 0;
    std::string firstFailure;

    // `label` (a callable giving the symbol's text) is evaluated for the first failure only.
    template <typename Label>
    void check(double computed, const ExactSymbol& exact, const Label& label) {
        ++count;
        const double value = exact.toDouble();
        const bool ok = exact.isZero() ? std::fabs(computed) <= 1e-14
                                       : std::fabs(computed - value) <= 1e-12 * std::fabs(value);
        if (!ok && failures++ == 0)
            firstFailure = label() + ": computed " + std::to_string(computed) + ", exact " + std::to_string(value);
    }
};

std::string twiceLabel(std::initializer_list<int> twice) {
    std::string text = "(";
    for (const int t : twice) text += std::to_string(t) + " ";
    return text + ") doubled";
}

constexpr int kTwiceJMax = 16;  // j up to 8, half-integers included

TEST(ExactSymbols, ExactEvaluatorReproducesKnownValues) {
    // Exact values of Edmonds 1957 (Tables 2 and 5) and of the 9j sum.
    EXPECT_NEAR(exactThreeJ(2, 2, 0, 2, -2, 0).toDouble(), 1.0 / std::sqrt(3.0), 1e-15);
    EXPECT_NEAR(exactThreeJ(6, 4, 6, 0, 0, 0).toDouble(), 2.0 * std::sqrt(105.0) / 105.0, 1e-15);
    EXPECT_NEAR(exactSixJ(6, 6, 4, 6, 6, 4).toDouble(), 19.0 / 420.0, 1e-15);
    EXPECT_NEAR(exactSixJ(10, 10, 2, 2, 2, 8).toDouble(), -1.0 / std::sqrt(55.0), 1e-15);
    EXPECT_NEAR(exactNineJ({4, 4, 4, 4, 4, 4, 4, 4, 4}).toDouble(), 41.0 / 2450.0, 1e-15);
    EXPECT_NEAR(exactNineJ({1, 1, 2, 6, 6, 4, 7, 5, 4}).toDouble(), std::sqrt(10.0) / 120.0, 1e-15);
    EXPECT_NEAR(exactNineJ({2, 2, 0, 0, 2, 2, 2, 0, 2}).toDouble(), 1.0 / 9.0, 1e-15);
    EXPECT_TRUE(exactNineJ({2, 2, 2, 2, 2, 2, 2, 2, 2}).isZero());
}

TEST(ExactSymbols, EveryThreeJUpToEightAgrees) {
    Agreement agreement;
    for (int j1 = 0; j1 <= kTwiceJMax; ++j1)
        for (int j2 = 0; j2 <= kTwiceJMax; ++j2)
            for (int j3 = 0; j3 <= kTwiceJMax; ++j3) {
                if (!triad(j1, j2, j3)) continue;
                for (int m1 = -j1; m1 <= j1; m1 += 2)
                    for (int m2 = -j2; m2 <= j2; m2 += 2) {
                        const int m3 = -m1 - m2;
                        if (std::abs(m3) > j3) continue;
                        agreement.check(orvane::ThreeJ2(j1, j2, j3, m1, m2, m3),
                                        exactThreeJ(j1, j2, j3, m1, m2, m3),
                                        [&] { return "3j " + twiceLabel({j1, j2, j3, m1, m2, m3}); });
                    }
            }
    EXPECT_GT(agreement.count, 90000);  // every valid 3j with j <= 8
    EXPECT_EQ(agreement.failures, 0) << agreement.firstFailure;
}

TEST(ExactSymbols, EverySixJUpToEightAgrees) {
    Agreement agreement;
    std::array<int, 6> s{};
    for (s[0] = 0; s[0] <= kTwiceJMax; ++s[0])
        for (s[1] = 0; s[1] <= kTwiceJMax; ++s[1])
            for (s[2] = 0; s[2] <= kTwiceJMax; ++s[2]) {
                if (!triad(s[0], s[1], s[2])) continue;
                for (s[3] = 0; s[3] <= kTwiceJMax; ++s[3])
                    for (s[4] = 0; s[4] <= kTwiceJMax; ++s[4]) {
                        if (!triad(s[3], s[4], s[2])) continue;
                        for (s[5] = 0; s[5] <= kTwiceJMax; ++s[5]) {
                            if (!triad(s[0], s[4], s[5]) || !triad(s[3], s[1], s[5])) continue;
                            agreement.check(orvane::SixJ2(s[0], s[1], s[2], s[3], s[4], s[5]),
                                            exactSixJ(s[0], s[1], s[2], s[3], s[4], s[5]),
                                            [&] { return "6j " + twiceLabel({s[0], s[1], s[2], s[3], s[4], s[5]}); });
                        }
                    }
            }
    EXPECT_GT(agreement.count, 20000) << agreement.count;
    EXPECT_EQ(agreement.failures, 0) << agreement.firstFailure;
}

bool validNineJ(const std::array<int, 9>& j) {
    return triad(j[0], j[1], j[2]) && triad(j[3], j[4], j[5]) && triad(j[6], j[7], j[8]) &&
           triad(j[0], j[3], j[6]) && triad(j[1], j[4], j[7]) && triad(j[2], j[5], j[8]);
}

void checkNineJ(const std::array<int, 9>& j, Agreement& agreement) {
    agreement.check(orvane::NineJ2(j[0], j[1], j[2], j[3], j[4], j[5], j[6], j[7], j[8]), exactNineJ(j),
                    [&] { return "9j " + twiceLabel({j[0], j[1], j[2], j[3], j[4], j[5], j[6], j[7], j[8]}); });
}

TEST(ExactSymbols, EveryNineJUpToFourAgrees) {
    constexpr int kNineJAllMax = 8;  // j up to 4, half-integers included
    Agreement agreement;
    std::array<int, 9> s{};
    for (s[0] = 0; s[0] <= kNineJAllMax; ++s[0])
        for (s[1] = 0; s[1] <= kNineJAllMax; ++s[1])
            for (s[2] = 0; s[2] <= kNineJAllMax; ++s[2]) {
                if (!triad(s[0], s[1], s[2])) continue;
                for (s[3] = 0; s[3] <= kNineJAllMax; ++s[3])
                    for (s[4] = 0; s[4] <= kNineJAllMax; ++s[4])
                        for (s[5] = 0; s[5] <= kNineJAllMax; ++s[5]) {
                            if (!triad(s[3], s[4], s[5])) continue;
                            for (s[6] = 0; s[6] <= kNineJAllMax; ++s[6])
                                for (s[7] = 0; s[7] <= kNineJAllMax; ++s[7])
                                    for (s[8] = 0; s[8] <= kNineJAllMax; ++s[8]) {
                                        if (validNineJ(s)) checkNineJ(s, agreement);
                                    }
                        }
            }
    EXPECT_GT(agreement.count, 50000) << agreement.count;
    EXPECT_EQ(agreement.failures, 0) << agreement.firstFailure;
}

TEST(ExactSymbols, RandomNineJUpToEightAgree) {
    std::mt19937 generator(20260611);
    std::uniform_int_distribution<int> pick(0, kTwiceJMax);
    Agreement agreement;
    while (agreement.count < 100000) {
        // Draw the first row and column freely, then the rest until all six triads hold.
        std::array<int, 9> s{};
        for (auto& v : s) v = pick(generator);
        if (!validNineJ(s)) {
            // Make the third entry of each row and column follow from the others.
            s[2] = std::abs(s[0] - s[1]) + 2 * (pick(generator) % (std::min(s[0], s[1]) + 1));
            s[5] = std::abs(s[3] - s[4]) + 2 * (pick(generator) % (std::min(s[3], s[4]) + 1));
            s[6] = std::abs(s[0] - s[3]) + 2 * (pick(generator) % (std::min(s[0], s[3]) + 1));
            s[7] = std::abs(s[1] - s[4]) + 2 * (pick(generator) % (std::min(s[1], s[4]) + 1));
            s[8] = std::abs(s[6] - s[7]) + 2 * (pick(generator) % (std::min(s[6], s[7]) + 1));
            if (!validNineJ(s) || *std::max_element(s.begin(), s.end()) > kTwiceJMax) continue;
        }
        checkNineJ(s, agreement);
    }
    EXPECT_EQ(agreement.failures, 0) << agreement.firstFailure;
}

}  // namespace
