// Sets and maps against std::set and std::map over long random runs, with old versions kept
// alive and checked at the end: changes must never reach a copy.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

#include "runtime/Map.h"

namespace {

template <class Set>
std::vector<int> contents(const Set& set) {
    std::vector<int> v;
    for (int i = 0; i < set.size(); ++i) v.push_back(set.at(i));
    return v;
}

using Pairs = std::vector<std::pair<int, int>>;

Pairs contents(const _eMap<int, int>& map) {
    Pairs v;
    for (int i = 0; i < map.size(); ++i) v.emplace_back(map.at(i).first, map.at(i).second);
    return v;
}

void runSets(unsigned seed, int steps) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 rng(seed);
    _eSet<int> set;
    std::set<int> mirror;
    std::vector<std::pair<_eSet<int>, std::set<int>>> kept;
    for (int step = 0; step < steps; ++step) {
        // Small ranges make repeats common, wide ones make trees tall.
        int range = (step / 500) % 2 == 0 ? 200 : 100000;
        int x = int(rng() % unsigned(range));
        switch (rng() % 8) {
            case 0: {
                _eSet<int> other;
                std::set<int> otherMirror;
                int n = int(rng() % 80);
                for (int i = 0; i < n; ++i) {
                    int y = int(rng() % unsigned(range));
                    other.add(y);
                    otherMirror.insert(y);
                }
                if (rng() % 2 == 0) {
                    set.addAll(other);
                    mirror.insert(otherMirror.begin(), otherMirror.end());
                } else {
                    other.addAll(set);
                    otherMirror.insert(mirror.begin(), mirror.end());
                    set = other;
                    mirror = otherMirror;
                }
                break;
            }
            case 1:
                ASSERT_EQ(set.contains(x), mirror.count(x) == 1) << "step " << step;
                break;
            case 2:
                if (kept.size() < 20) kept.emplace_back(set, mirror);
                break;
            default:
                set.add(x);
                mirror.insert(x);
        }
        ASSERT_EQ(set.size(), int(mirror.size())) << "step " << step;
    }
    ASSERT_EQ(contents(set), std::vector<int>(mirror.begin(), mirror.end()));
    ASSERT_TRUE(set.elements().checkTree());
    for (const auto& [old, oldMirror] : kept) {
        ASSERT_EQ(contents(old), std::vector<int>(oldMirror.begin(), oldMirror.end()));
        ASSERT_EQ(old == set, oldMirror == mirror);
    }
}

void runMaps(unsigned seed, int steps) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 rng(seed);
    _eMap<int, int> map;
    std::map<int, int> mirror;
    std::vector<std::pair<_eMap<int, int>, std::map<int, int>>> kept;
    for (int step = 0; step < steps; ++step) {
        int key = int(rng() % 3000);
        int value = int(rng() % 1000);
        switch (rng() % 6) {
            case 0:
                if (kept.size() < 20) kept.emplace_back(map, mirror);
                break;
            case 1: {
                auto found = mirror.find(key);
                ASSERT_EQ(map.containsKey(key), found != mirror.end()) << "step " << step;
                if (found != mirror.end()) {
                    ASSERT_EQ(map.get(key), found->second) << "step " << step;
                }
                break;
            }
            default:
                map.put(key, value);
                mirror[key] = value;
        }
    }
    ASSERT_EQ(contents(map), Pairs(mirror.begin(), mirror.end()));
    ASSERT_TRUE(map.elements().checkTree());
    for (const auto& [old, oldMirror] : kept)
        ASSERT_EQ(contents(old), Pairs(oldMirror.begin(), oldMirror.end()));
}

}  // namespace

TEST(SetRandom, MatchesStdSet) {
    for (unsigned seed = 1; seed <= 4; ++seed) runSets(seed, 5000);
}

TEST(SetRandom, MapMatchesStdMap) {
    for (unsigned seed = 1; seed <= 4; ++seed) runMaps(seed, 8000);
}
