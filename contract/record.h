// What is known of an instrumented source since it was compiled: whose counters stand where in its
// array, and what the compiler's own reader needs to say what they mean. The compiler driver writes
// it into the object (a section of its own, which no link takes over) and from there into the
// project's temporary area; the link driver and lltcov read it.
//
//     lltrecord 1 LENGTH           LENGTH: bytes after this line's end
//     symbol util_c_1a2b           coverage symbol
//     source /p/src/util.c         absolute paths
//     object /p/obj/util.o
//     mode 1                       stub mode
//     command gcc -g -O2           content of "CompileCmd.txt"
//     map REAL=RECORDED            path prefix and what the compiler was told to record for it
//     compiler gcc                 gcc or clang: who counts, and how the rest reads
//     reader /usr/bin/gcov-12      reads the notes (gcc); directory of LLVM's tools (clang)
//     assembler as                 the compiler's assembler, and the options for its target
//     assembler --64
//     array 96 16                  bytes of the counters; how many at the end join by "or"
//     version 1110585898 1         gcc: version word of notes and data; 1: data have a checksum
//     function 70510028 1 99 f     gcc: identifier, checksums of lines and flow, name
//     profile 24 f                 hash of the structure, name in profiles (clang)
//     counters 0 4 32              of the function before: kind, number of 8-byte counters, offset
//     notes SIZE                   last line; SIZE bytes follow, the notes of the compiler (gcc)
//
// Texts are lines as they are; a path with a line end in it cannot be recorded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A run of counters of one function, 8 bytes each in the byte order of the target.
struct CounterRun {
    std::uint32_t kind;   ///< the compiler's number of the kind; 0 counts executions
    std::uint32_t number; ///< of counters
    std::uint32_t offset; ///< bytes from the start of the array
};

/// A function with counters.
struct RecordedFunction {
    std::string name;                  ///< assembler name; with clang its name in profiles
    std::uint32_t ident = 0;           ///< gcc
    std::uint32_t lineno_checksum = 0; ///< gcc
    std::uint32_t cfg_checksum = 0;    ///< gcc
    std::uint64_t hash = 0;            ///< clang
    std::vector<CounterRun> counters;
};

/// Who counts.
enum class CounterSource { gcc, clang };

/// What the compiler's text says of a source's counters.
struct RecordedCounters {
    std::uint32_t array_bytes = 0; ///< a multiple of 8
    std::uint32_t or_bytes = 0;    ///< at the array's end, of counters that join by "or"
    std::uint32_t version = 0;     ///< gcc
    bool has_checksum = false;     ///< gcc: data files hold a checksum after the stamp
    std::vector<RecordedFunction> functions;
};

/// An instrumented source and its object.
struct Record : RecordedCounters {
    std::string symbol;
    std::string source; ///< absolute path
    std::string object; ///< absolute path
    int stub_mode = 1;
    std::string compile_command;
    std::vector<std::pair<std::string, std::string>> path_maps; ///< real, recorded prefix
    CounterSource compiler = CounterSource::gcc;
    std::string reader;
    std::vector<std::string> assembler;
    std::string notes; ///< gcc
};

/// The section of an object that holds its records; after a partial link, one after the other.
inline constexpr const char RECORD_SECTION[] = ".lltcov_record";

/// The record as bytes.
std::string to_bytes(const Record& record);

/// The records in these bytes, which hold nothing else. Throws `FormatError` (of
/// commonfunc/text_lines.h, lines counted from the record's first) for what is not whole or not
/// sound: every counter is then within the array.
std::vector<Record> read_records(std::string_view bytes);
