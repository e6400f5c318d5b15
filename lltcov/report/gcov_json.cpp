// The text lists a line once for the source, and once more for each instance of a template that
// holds it: their counts add up to what gcov shows beside the line.
#include "lltcov/report/gcov_json.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace
{

using nlohmann::json;

/// Names are bytes in any encoding, the parser wants UTF-8: each byte stands for the character of
/// its value while the text is parsed.
std::string widened(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xC0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return out;
}

std::string narrowed(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool is_pair = byte >= 0x80 && i + 1 < text.size();
        out += is_pair ? static_cast<char>((byte & 3) << 6 | (text[i + 1] & 0x3F)) : text[i];
        i += is_pair ? 1 : 0;
    }
    return out;
}

/// Counts of unsound profiles may be negative.
std::uint64_t count_of(const json& object, const char* key)
{
    return static_cast<std::uint64_t>(
        std::max<std::int64_t>(0, object.at(key).get<std::int64_t>()));
}

std::uint32_t line_of(const json& object, const char* key)
{
    return object.at(key).get<std::uint32_t>();
}

/// The list under the key, empty when there is none.
const json& list_of(const json& object, const char* key)
{
    static const json none = json::array();
    const auto found = object.find(key);
    return found == object.end() ? none : *found;
}

Condition condition_of(const json& object)
{
    Condition condition;
    condition.terms.resize(count_of(object, "count") / 2, {true, true});
    for (const json& term : list_of(object, "not_covered_true")) {
        condition.terms.at(term.get<std::size_t>()).first = false;
    }
    for (const json& term : list_of(object, "not_covered_false")) {
        condition.terms.at(term.get<std::size_t>()).second = false;
    }
    return condition;
}

void add_line(SourceCoverage& source, const json& object)
{
    const std::uint32_t line = line_of(object, "line_number");
    LineBlock block;
    block.count = count_of(object, "count");
    std::uint64_t& sum = source.lines[line];
    sum = sum_of_counts(sum, block.count);
    for (const json& branch : list_of(object, "branches")) {
        block.branches.push_back({count_of(branch, "count"), branch.at("throw").get<bool>(),
                                  branch.at("fallthrough").get<bool>()});
    }
    for (const json& condition : list_of(object, "conditions")) {
        if (count_of(condition, "count") > 1) {
            block.conditions.push_back(condition_of(condition));
        }
    }
    if (!block.branches.empty() || !block.conditions.empty()) {
        add_block(source.blocks[line][narrowed(object.value("function_name", ""))], block);
    }
}

void add_function(SourceCoverage& source, const json& object)
{
    FunctionCoverage& function = source.functions[narrowed(object.at("name").get<std::string>())];
    function.line = line_of(object, "start_line");
    function.count = count_of(object, "execution_count");
}

/// Takes lines, functions and files as the parser completes them, and drops them: together they
/// would take much memory, and time.
class Taker
{
public:
    explicit Taker(GcovResult& result) : result_(result) {}

    bool operator()(int depth, json::parse_event_t event, json& value)
    {
        if (event != json::parse_event_t::object_end || (depth != PART && depth != FILE)) {
            return true;
        }
        if (depth == FILE) {
            result_.sources.emplace_back(narrowed(value.at("file").get<std::string>()),
                                         std::move(source_));
            source_ = {};
        } else if (value.contains("line_number")) {
            add_line(source_, value);
        } else {
            add_function(source_, value);
        }
        return false;
    }

private:
    static constexpr int FILE = 2; ///< depth of a file's object
    static constexpr int PART = 4; ///< of the objects in its lists

    GcovResult& result_;
    SourceCoverage source_;
};

} // namespace

GcovResult read_gcov_json(std::string_view text)
{
    try {
        GcovResult result;
        const json root = json::parse(widened(text), Taker(result));
        result.data_file = root.at("data_file").get<std::string>();
        result.directory = narrowed(root.value("current_working_directory", ""));
        return result;
    } catch (const json::exception& error) {
        throw std::runtime_error(error.what());
    }
}
