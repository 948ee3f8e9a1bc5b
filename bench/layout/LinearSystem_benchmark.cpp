#include "platform/snapkit/LinearSystem.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace sela {
namespace {

struct Box {
    explicit Box(LinearSystem& system) : left(system.addVariable()), width(system.addVariable()) {}
    Variable left;
    Variable width;
};

/// One axis of a screen twice over: cards in a column of rows, each view placed by one that comes before it.
void screenFromTheOutsideIn(benchmark::State& state) {
    for (auto _ : state) {
        LinearSystem system;
        for (int axis = 0; axis < 2; ++axis) {
            const Box root(system);
            system.assign(root.left, 0);
            system.assign(root.width, 375);
            Box before = root;
            for (int i = 0; i < state.range(0); ++i) {
                const Box box(system);
                system.assign(box.width, 60);
                if (i % 2 == 0)
                    system.addEquation(LinearExpression(box.left)
                                           .add(box.width, 0.5)
                                           .add(root.left, -1)
                                           .add(root.width, -0.5));
                else
                    system.addEquation(
                        LinearExpression(box.left).add(before.left, -1).add(before.width, -1).add(-8));
                before = box;
            }
            benchmark::DoNotOptimize(system.value(before.left));
        }
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(screenFromTheOutsideIn)->Arg(60)->Range(64, 4096)->Complexity();

/// Views that hang on each other in a row whose end alone has a place.
void chainAnchoredLast(benchmark::State& state) {
    for (auto _ : state) {
        LinearSystem system;
        std::vector<Variable> chain{system.addVariable()};
        for (int i = 1; i < state.range(0); ++i) {
            chain.push_back(system.addVariable());
            system.addEquation(LinearExpression(chain[chain.size() - 2]).add(chain.back(), -1).add(8));
        }
        system.assign(chain.back(), 0);
        benchmark::DoNotOptimize(system.value(chain.front()));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(chainAnchoredLast)->Arg(60)->Range(64, 1024)->Complexity();

} // namespace
} // namespace sela
