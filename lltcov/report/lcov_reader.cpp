// Records that repeat what others say (sums, checksums) are passed over.
#include "lltcov/report/lcov_reader.h"

#include "commonfunc/text_lines.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{

class Reader
{
public:
    explicit Reader(std::string_view text) : lines_(text) {}

    Coverage read()
    {
        while (lines_.next()) {
            std::string_view rest = lines_.rest_of_line();
            const std::string_view key = split_off(rest, ':');
            if (key == "SF") {
                source_ = &coverage_[std::string(rest)];
            } else if (key == "end_of_record") {
                source_ = nullptr;
            } else if (source_ != nullptr) {
                read_line(key, rest);
            } else {
                lines_.fail("a line of no source");
            }
        }
        if (source_ != nullptr) {
            lines_.fail("the last source has no end");
        }
        return std::move(coverage_);
    }

private:
    std::uint64_t number(std::string_view& rest, std::uint64_t largest = UINT64_MAX)
    {
        return lines_.number_of(split_off(rest, ','), "number", largest);
    }

    std::uint32_t line_number(std::string_view& rest)
    {
        return static_cast<std::uint32_t>(number(rest, UINT32_MAX));
    }

    void read_line(std::string_view key, std::string_view rest)
    {
        if (key == "FN") {
            const std::uint32_t line = line_number(rest);
            source_->functions[std::string(rest)].line = line;
        } else if (key == "FNDA") {
            const std::uint64_t count = number(rest);
            source_->functions[std::string(rest)].count = std::min(count, MAX_COUNT);
        } else if (key == "DA") {
            const std::uint32_t line = line_number(rest);
            source_->lines[line] = std::min(number(rest), MAX_COUNT);
        } else if (key == "BRDA") {
            read_branch(rest);
        }
    }

    /// LINE,DECISION,BRANCH,COUNT; the count is "-" where the decision was never made.
    void read_branch(std::string_view rest)
    {
        const std::uint32_t line = line_number(rest);
        char name[16];
        std::snprintf(name, sizeof name, "%06u", line_number(rest));
        split_off(rest, ',');
        LineBlock& block = source_->blocks[line][name];
        Branch& branch = block.branches.emplace_back();
        if (rest != "-") {
            branch.count = std::min(number(rest), MAX_COUNT);
            block.count = std::max(sum_of_counts(block.count, branch.count), std::uint64_t{1});
        }
    }

    TextLines lines_;
    Coverage coverage_;
    SourceCoverage* source_ = nullptr;
};

} // namespace

Coverage read_lcov(std::string_view text)
{
    return Reader(text).read();
}
