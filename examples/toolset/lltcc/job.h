// What the driver tells the assembler role, through one environment variable.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// One compile.
struct Job {
    std::string area; ///< LLTTEMP/codemeasure of the project, absolute
    int stub_mode = 1;
    bool drop_debug_info = false;     ///< the user asked for none
    std::string assembler;            ///< the real assembler
    std::string compile_command;      ///< content of "CompileCmd.txt"
    int notices = -1;                 ///< open file that takes the reasons of failures
    std::vector<std::string> sources; ///< absolute paths
    std::vector<std::pair<std::string, std::string>> path_maps; ///< real prefix, recorded prefix
};

/// Name of the environment variable.
inline constexpr const char* JOB_VARIABLE = "LLTCC_JOB";

/// One line per item: its name, a blank, its value.
std::string to_text(const Job& job);

/// The job of such a text; unknown items are left out.
Job job_from(const std::string& text);
