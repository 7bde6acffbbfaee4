// The persistent sequence against std::vector: append, indexed reads, concatenation, and a
// change to a copy (where the tree clones one path and the vector copies everything).
#include <benchmark/benchmark.h>

#include <vector>

#include "runtime/Seq.h"

namespace {

_eSeq<int> built(int n) {
    _eSeq<int> s;
    for (int i = 0; i < n; ++i) s.pushBack(i);
    return s;
}

void SeqAppend(benchmark::State& state) {
    int n = int(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(built(n));
    state.SetItemsProcessed(state.iterations() * n);
}

void VectorAppend(benchmark::State& state) {
    int n = int(state.range(0));
    for (auto _ : state) {
        std::vector<int> v;
        for (int i = 0; i < n; ++i) v.push_back(i);
        benchmark::DoNotOptimize(v);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Reads every element once, at a stride that leaves each read in another leaf.
void SeqAt(benchmark::State& state) {
    int n = int(state.range(0));
    _eSeq<int> s = built(n);
    for (auto _ : state) {
        long sum = 0;
        for (int i = 0, j = 0; i < n; ++i, j = (j + 4099) % n) sum += s.at(j);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void VectorAt(benchmark::State& state) {
    int n = int(state.range(0));
    std::vector<int> v(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) v[std::size_t(i)] = i;
    for (auto _ : state) {
        long sum = 0;
        for (int i = 0, j = 0; i < n; ++i, j = (j + 4099) % n) sum += v[std::size_t(j)];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Joins two sequences of n/2 elements each.
void SeqConcat(benchmark::State& state) {
    int n = int(state.range(0));
    _eSeq<int> left = built(n / 2);
    _eSeq<int> right = built(n - n / 2);
    for (auto _ : state) benchmark::DoNotOptimize(left.concat(right));
}

void VectorConcat(benchmark::State& state) {
    int n = int(state.range(0));
    std::vector<int> left(std::size_t(n / 2), 1);
    std::vector<int> right(std::size_t(n - n / 2), 2);
    for (auto _ : state) {
        std::vector<int> joined(left);
        joined.insert(joined.end(), right.begin(), right.end());
        benchmark::DoNotOptimize(joined);
    }
}

// Copies the sequence and changes one element in the middle of the copy.
void SeqCopyThenChange(benchmark::State& state) {
    int n = int(state.range(0));
    _eSeq<int> s = built(n);
    for (auto _ : state) {
        _eSeq<int> copy(s);
        copy.replaceAt(n / 2, -1);
        benchmark::DoNotOptimize(copy);
    }
}

void VectorCopyThenChange(benchmark::State& state) {
    int n = int(state.range(0));
    std::vector<int> v(std::size_t(n), 1);
    for (auto _ : state) {
        std::vector<int> copy(v);
        copy[std::size_t(n / 2)] = -1;
        benchmark::DoNotOptimize(copy);
    }
}

}  // namespace

#define MB_SIZES RangeMultiplier(10)->Range(1000, 1000000)
BENCHMARK(SeqAppend)->MB_SIZES;
BENCHMARK(VectorAppend)->MB_SIZES;
BENCHMARK(SeqAt)->MB_SIZES;
BENCHMARK(VectorAt)->MB_SIZES;
BENCHMARK(SeqConcat)->MB_SIZES;
BENCHMARK(VectorConcat)->MB_SIZES;
BENCHMARK(SeqCopyThenChange)->MB_SIZES;
BENCHMARK(VectorCopyThenChange)->MB_SIZES;
#undef MB_SIZES
