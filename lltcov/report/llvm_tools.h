// The two tools of LLVM that read clang's counters.
#pragma once

#include <string>

/// Both tools, of one version; empty names when they are not there.
struct LlvmTools {
    std::string profdata;
    std::string cov;
};

/// The tools in the directory that was recorded, else "llvm-profdata" and "llvm-cov" on PATH, else
/// the newest ones there that have a version in their names ("llvm-cov-14").
LlvmTools find_llvm_tools(const std::string& directory);
