// Sequences against std::vector over long random runs, with many versions alive at once:
// path copying must leave every old version as it was.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "runtime/Seq.h"

namespace {

struct Version {
    _eSeq<int> seq;
    std::vector<int> mirror;
};

std::vector<int> contents(const _eSeq<int>& s) {
    std::vector<int> v;
    v.reserve(std::size_t(s.size()));
    for (int i = 0; i < s.size(); ++i) v.push_back(s.at(i));
    return v;
}

// Lengths near the points where a tree gains a level are the interesting ones.
int edgeLength(std::mt19937& rng) {
    static const int lengths[] = {0, 1, 31, 32, 33, 511, 512, 513, 8192, 8193};
    return lengths[rng() % std::size(lengths)];
}

std::vector<int> freshValues(std::mt19937& rng, int n) {
    std::vector<int> v(static_cast<std::size_t>(n));
    for (int& x : v) x = int(rng() % 100000);
    return v;
}

void runDifferential(unsigned seed, int steps) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 rng(seed);
    std::vector<Version> versions(6);
    for (int step = 0; step < steps; ++step) {
        Version& source = versions[rng() % versions.size()];
        Version result = source;  // the source version must survive whatever happens to the copy
        int n = int(result.mirror.size());
        int op = int(rng() % 12);
        SCOPED_TRACE(testing::Message() << "step " << step << " op " << op << " size " << n);
        switch (op) {
            case 0:
            case 1: {
                int count = 1 + int(rng() % 40);
                for (int i = 0; i < count; ++i) {
                    int x = int(rng());
                    result.seq.pushBack(x);
                    result.mirror.push_back(x);
                }
                break;
            }
            case 2: {
                int count = 1 + int(rng() % 20);
                for (int i = 0; i < count; ++i) {
                    int at = int(rng() % std::uint32_t(result.mirror.size() + 1));
                    int x = int(rng());
                    result.seq.insertAt(at, x);
                    result.mirror.insert(result.mirror.begin() + at, x);
                }
                break;
            }
            case 3:
                if (n > 0) {
                    int at = int(rng() % std::uint32_t(n));
                    result.seq.replaceAt(at, -7);
                    result.mirror[std::size_t(at)] = -7;
                }
                break;
            case 4:
                if (n > 0) {
                    int start = int(rng() % std::uint32_t(n));
                    int count = int(rng() % std::uint32_t(n - start + 1));
                    result.seq.removeRange(start, count);
                    result.mirror.erase(result.mirror.begin() + start, result.mirror.begin() + start + count);
                }
                break;
            case 5: {
                int k = int(rng() % std::uint32_t(n + 1));
                result.seq = result.seq.take(k);
                result.mirror.resize(std::size_t(k));
                break;
            }
            case 6: {
                int k = int(rng() % std::uint32_t(n + 1));
                result.seq = result.seq.drop(k);
                result.mirror.erase(result.mirror.begin(), result.mirror.begin() + k);
                break;
            }
            case 7: {
                const Version& other = versions[rng() % versions.size()];
                result.seq = result.seq.concat(other.seq);
                result.mirror.insert(result.mirror.end(), other.mirror.begin(), other.mirror.end());
                break;
            }
            case 8: {
                const Version& other = versions[rng() % versions.size()];
                _eSeq<int> front = other.seq;
                front.appendAll(result.seq);
                std::vector<int> joined = other.mirror;
                joined.insert(joined.end(), result.mirror.begin(), result.mirror.end());
                result.seq = front;
                result.mirror = joined;
                break;
            }
            case 9:
                if (n > 0) {
                    result.seq.removeLast();
                    result.mirror.pop_back();
                }
                break;
            case 10: {
                std::vector<int> values = freshValues(rng, edgeLength(rng));
                result.seq = result.seq.concat(_eSeq<int>(int(values.size()), values.data()));
                result.mirror.insert(result.mirror.end(), values.begin(), values.end());
                break;
            }
            case 11:
                if (n > 1) {
                    int i = int(rng() % std::uint32_t(n));
                    int j = int(rng() % std::uint32_t(n));
                    result.seq.swap(i, j);
                    std::swap(result.mirror[std::size_t(i)], result.mirror[std::size_t(j)]);
                }
                break;
        }
        // Keep sizes bounded so that a long run stays fast.
        if (result.mirror.size() > 20000) {
            result.seq = result.seq.take(5000);
            result.mirror.resize(5000);
        }
        versions[rng() % versions.size()] = std::move(result);
        for (std::size_t v = 0; v < versions.size(); ++v) {
            ASSERT_TRUE(versions[v].seq.checkTree()) << "version " << v;
            ASSERT_EQ(versions[v].seq.size(), int(versions[v].mirror.size())) << "version " << v;
        }
        if (step % 16 == 0) {
            for (std::size_t v = 0; v < versions.size(); ++v) {
                ASSERT_EQ(contents(versions[v].seq), versions[v].mirror) << "version " << v;
            }
        }
    }
    for (std::size_t v = 0; v < versions.size(); ++v) {
        ASSERT_EQ(contents(versions[v].seq), versions[v].mirror) << "version " << v;
        _eSeq<int> rebuilt(int(versions[v].mirror.size()), versions[v].mirror.data());
        EXPECT_TRUE(rebuilt == versions[v].seq);
    }
}

}  // namespace

TEST(SeqRandom, MatchesVectorAcrossManyVersions) {
    runDifferential(20261123u, 4000);
}
