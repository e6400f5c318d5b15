// A project on disk as a build and its runs leave it, read by a gcov that knows only its two lines.
#pragma once

#include "contract/source_table.h"
#include "lltcov/report/project_data.h"
#include "lltcov/report/shown_sources.h"
#include "tests/fixture.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

/// When all sources got their text.
inline constexpr time_t COMPILED = 1700000000;

/// Sets the time at which the file got its content.
inline void set_time(const std::string& path, time_t seconds)
{
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

/// A table of one source with 16 bytes of counters; with size 0 as archive steps write it.
inline std::string table(int number, const std::string& symbol, unsigned size)
{
    _SOURCEFILE_OBJECT entry = {};
    entry.fileid = number;
    (symbol + ".c").copy(entry.szName, sizeof entry.szName - 1);
    entry.size = size;
    entry.mtime = size != 0 ? COMPILED : 0;
    entry.instnum = 4;
    return std::string(bytes_of(entry));
}

/// A word of a dump.
inline std::string word(std::uint64_t value)
{
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

/// The lines of a dump about its sources, and the counts of one run.
inline std::string source_lines(const std::string& symbol, const Counters& counters)
{
    const std::string bytes = std::to_string(counters.size() * 8);
    std::string text = "file 0 " + symbol + ".c " + bytes + "\ncounts " +
                       std::to_string(counters.size() * 8 + 8) + "\n" + word(1);
    for (const std::uint64_t count : counters) {
        text += word(count);
    }
    return text;
}

/// A gcov for objects of one function with two counters: the first one is line 1 of a.c, the second
/// one line 7 of h.h.
inline constexpr char GCOV[] = R"sh(#!/bin/sh
[ "$1" != --version ] || { echo 'gcov (test) 12.2.0'; exit; }
for file; do
    [ -f "$file" ] || continue
    set -- $(od -An -tu8 -j60 -N16 "$file")
    echo '{"data_file": "'$file'", "current_working_directory": "@", "files": [
        {"file": "a.c", "lines": [{"line_number": 1, "count": '$1'}]},
        {"file": "h.h", "lines": [{"line_number": 7, "count": '$2'}]}]}' | paste -sd ' '
done
)sh";

/// A project of a.c and h.h, with the module liba of one object, S.
class ProjectDataTest : public TestDir
{
protected:
    void SetUp() override
    {
        TestDir::SetUp();
        write_file(dir + "/a.c", "12345");
        write_file(dir + "/h.h", "h");
        set_time(dir + "/a.c", COMPILED);
        set_time(dir + "/h.h", COMPILED);
        std::string gcov = GCOV;
        write_file(dir + "/gcov", gcov.replace(gcov.find('@'), 1, dir));
        std::filesystem::permissions(dir + "/gcov", std::filesystem::perms::owner_all);
        add_module("liba", "S");
    }

    /// The record of an object of a.c, which includes h.h.
    std::string record(const std::string& symbol, const std::string& object = "a.o",
                       std::uint32_t or_bytes = 0)
    {
        Record record;
        record.symbol = symbol;
        record.source = dir + "/a.c";
        record.object = dir + "/" + object;
        record.reader = dir + "/gcov";
        record.array_bytes = 16;
        record.or_bytes = or_bytes;
        record.version = 'B' << 24 | '2' << 16 | '2' << 8 | '*';
        record.has_checksum = true;
        record.functions = {{"f", 1, 2, 3, 0, {{0, 2, 0}}}};
        record.notes = "notes";
        return to_bytes(record);
    }

    /// A module with one object of a.c.
    void add_module(const std::string& name, const std::string& symbol)
    {
        const std::string area = dir + "/" + name + "/codemeasure";
        std::filesystem::create_directories(area + "/db/db0");
        write_file(dir + "/" + name + ".a", "");
        write_file(area + "/.prj", "[project]\nBUID=Q1\nsutpath=" + dir + "/" + name + ".a\n");
        write_file(area + "/db/.tab", table(0, symbol, 0));
        write_file(area + "/db/db0/.tab", table(0, symbol, 5));
        write_file(area + "/db/db0/record", record(symbol));
        write_file(dir + "/a.o", "");
        set_time(dir + "/a.o", COMPILED + 1);
    }

    void add_dump(const std::string& area, const std::string& buid, const std::string& files)
    {
        std::filesystem::create_directories(dir + "/runs");
        write_file(dir + "/runs/m." + std::to_string(dumps_++) + ".0.lltcov",
                   "lltcov 2\nmodule m\nbuid " + buid + "\narea " + area + "\norder little\n" +
                       files);
    }

    /// The counts of a.c:1 and h.h:7, "-" for a line that is not shown.
    std::string counts()
    {
        findings_ = Findings();
        ProjectData data = read_modules(dir, findings_);
        add_dumps(data, dir + "/runs", findings_);
        CoverageMaker maker(data, Counting::branches, findings_);
        return counts_in(maker.coverage_of(all_objects(data)));
    }

    std::string counts_in(Coverage coverage)
    {
        std::string text;
        for (const auto& [path, line] : {std::pair{dir + "/a.c", 1U}, {dir + "/h.h", 7U}}) {
            const auto& lines = coverage[path].lines;
            text += lines.count(line) != 0 ? std::to_string(lines.at(line)) + " " : "- ";
        }
        return text;
    }

    std::string said(const std::string& kind)
    {
        std::string text;
        for (const std::string& line : findings_.of(kind)) {
            text += line + "\n";
        }
        return text;
    }

    const std::string one_run_ = source_lines("S", {3, 4});
    Findings findings_;
    int dumps_ = 0;
};
