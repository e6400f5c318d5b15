// What the runs of a program left of one module: a file of the coverage runtime, whose format
// dump_format.h describes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The counts of one instrumented source.
struct DumpedSource {
    std::string_view symbol;             ///< coverage symbol
    std::size_t size = 0;                ///< counters of its array
    std::uint64_t offset = 0;            ///< where they begin in the file
    std::vector<std::uint64_t> counters; ///< the words of its array, when they were read
};

/// The content of a dump file. Its texts are views into the header, so it can be moved, not copied.
struct Dump {
    Dump() = default;
    Dump(Dump&&) = default;
    Dump& operator=(Dump&&) = default;

    std::vector<char> header; ///< as it was read
    std::string_view module;  ///< module name
    std::string_view buid;    ///< build id of the module's stub
    std::string_view area;    ///< the module's work area; empty for a dump of no run
    std::string_view test;    ///< name of the test that ran; empty when none was named
    std::string_view order;   ///< byte order of the words
    std::uint64_t runs = 0;   ///< processes whose counts these are
    std::vector<DumpedSource> sources;
};

/// A dump file that is read piece by piece: the header at once, an array when it is asked for. So a
/// file that is no dump costs little memory, however large it is.
class DumpReader
{
public:
    /// Puts so many bytes of the file from an offset on into the memory; throws when it cannot.
    using Bytes = std::function<void(std::uint64_t offset, char* to, std::size_t size)>;

    /// Reads the header of a file of that size; throws `FormatError` for one that is not whole or
    /// not sound. An empty file is a dump of no run: its writer was killed.
    DumpReader(std::uint64_t file_size, Bytes bytes);

    /// What was read.
    Dump& dump() { return dump_; }

    /// Reads the counters of one of its sources.
    void read_counters(DumpedSource& source);

private:
    void read_header(std::uint64_t file_size);

    Bytes bytes_;
    Dump dump_;
};

/// The dump of a whole file in memory, its counters read.
Dump read_dump(std::string_view bytes);

/// The bytes of a sound dump with another work area and another name of its test; with an empty
/// `test`, of no test.
std::string moved_dump(std::string_view bytes, const std::string& area, const std::string& test);
