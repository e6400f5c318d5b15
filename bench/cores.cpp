// Times what every wrapped command, every archived object and every setting goes through, without
// the processes and files around it.
#include "commonfunc/ini_profile.h"
#include "contract/names.h"
#include "lltld/object_scan.h"
#include "lltwrapper/cmd_parser.h"
#include "lltwrapper/wrapper_state.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace
{

/// A compile as build systems write it, with that many definitions and include directories each.
void rebuild_of_command(benchmark::State& state)
{
    std::vector<std::string> words = {"gcc", "-O2", "-g", "-c", "source.c", "-o", "source.o"};
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        words.push_back("-DNAME_" + std::to_string(i) + "=\"a b\"");
        words.push_back("-Ino/such/directory/" + std::to_string(i));
    }
    for ([[maybe_unused]] auto _ : state) {
        pOriginalCmd.clear();
        rebuild_command(words);
        benchmark::DoNotOptimize(pOriginalCmd.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(words.size()));
}
BENCHMARK(rebuild_of_command)->Arg(0)->Arg(10)->Arg(1000);

/// The search for coverage symbols in bytes that hold none: machine code, here of a simple
/// generator.
void scan_of_object(benchmark::State& state)
{
    std::string bytes(static_cast<std::size_t>(state.range(0)), '\0');
    std::uint32_t number = 1;
    for (char& byte : bytes) {
        number = number * 1664525 + 1013904223;
        byte = static_cast<char>(number >> 24);
    }
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(QMRstrstr(bytes.data(), ARRAY_PREFIX, bytes.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(scan_of_object)->Arg(4096)->Arg(1 << 20);

/// The last key of the last section.
void lookup_of_setting(benchmark::State& state)
{
    std::string text;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        text += "[section " + std::to_string(i) + "]\n";
        for (int key = 0; key < 10; ++key) {
            text += "key" + std::to_string(key) + "=value of it\n";
        }
    }
    const std::string section = "section " + std::to_string(state.range(0) - 1);
    int at[6];
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(parse_file(section.c_str(), "key9", text.c_str(), &at[0], &at[1],
                                            &at[2], &at[3], &at[4], &at[5]));
    }
}
BENCHMARK(lookup_of_setting)->Arg(1)->Arg(100);

} // namespace

BENCHMARK_MAIN();
