#include "asm_syntax.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <initializer_list>

namespace
{

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

/// The operand of a call of the probe: direct, through the linkage table or through the offset
/// table, in both syntaxes of x86-64.
bool is_probe_operand(std::string_view operand)
{
    for (const std::string_view before : {"*", "[QWORD PTR "}) {
        if (begins_with(operand, before)) {
            operand.remove_prefix(before.size());
        }
    }
    return begins_with(operand, PROBE) &&
           is_one_of(operand.substr(PROBE.size()),
                     {"", "@PLT", "@GOTPCREL(%rip)", "@GOTPCREL[rip]]"});
}

/// Reads the escape behind a backslash at `at`, and moves `at` to its last character.
char escaped(std::string_view line, std::size_t& at)
{
    if (!is_digit(line[at + 1])) {
        return line[++at];
    }
    const std::string octal(line.substr(at + 1, 3));
    at += octal.size();
    return static_cast<char>(std::strtol(octal.c_str(), nullptr, 8));
}

} // namespace

std::string_view trimmed(std::string_view line)
{
    const std::size_t first = line.find_first_not_of(" \t");
    const std::size_t last = line.find_last_not_of(" \t\r");
    return first == line.npos ? std::string_view{} : line.substr(first, last - first + 1);
}

std::vector<std::string> directive_words(std::string_view line)
{
    std::vector<std::string> out;
    bool quoted = false;
    bool open = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (!quoted && (c == ' ' || c == '\t' || c == ',')) {
            open = false;
            continue;
        }
        if (!open) {
            out.emplace_back();
            open = true;
        }
        if (c == '"') {
            quoted = !quoted;
        } else {
            const bool escape = quoted && c == '\\' && i + 1 < line.size();
            out.back() += escape ? escaped(line, i) : c;
        }
    }
    return out;
}

Location location_of(const std::vector<std::string>& words)
{
    const auto number = [&](std::size_t i) {
        return i < words.size() ? std::atoi(words[i].c_str()) : 0;
    };
    const auto split = std::find(words.begin(), words.end(), "discriminator");
    return {number(1), number(2), number(3),
            number(static_cast<std::size_t>(split - words.begin()) + 1)};
}

bool is_jump_target(std::string_view label)
{
    if (begins_with(label, ".LBB")) {
        return label.find('_') != label.npos; // GCC's `.LBB7` begins a scope
    }
    return !begins_with(label, ".L") || (label.size() > 2 && is_digit(label[2]));
}

std::string name_in_source(std::string_view symbol)
{
    if (!begins_with(symbol, "_Z")) {
        return std::string(symbol);
    }
    const bool nested = begins_with(symbol, "_ZN");
    std::string_view name;
    bool is_tag = false;
    for (std::size_t i = nested ? 3 : 2; i < symbol.size();) {
        const char c = symbol[i];
        if (is_digit(c)) {
            const auto digits = symbol.find_first_not_of("0123456789", i) - i;
            const std::size_t size = std::strtoul(symbol.data() + i, nullptr, 10);
            name = is_tag ? name : symbol.substr(std::min(i + digits, symbol.size()), size);
            is_tag = false;
            i += digits + size;
            if (!nested && (i >= symbol.size() || symbol[i] != 'B')) {
                break;
            }
        } else if (c == 'I' || c == 'Z' || (c == 'S' && symbol.substr(i, 2) != "St")) {
            return ""; // template arguments, a local name, an abbreviation
        } else if (c >= 'a' && c <= 'z') {
            return "operator";
        } else if (c == 'E' || c == 'C' || c == 'D') {
            break; // the end, a constructor, a destructor
        } else {
            is_tag = c == 'B'; // else a qualifier of the member function
            i += c == 'S' ? 2 : 1;
        }
    }
    return std::string(name);
}

bool is_sanitizer_start(std::string_view symbol)
{
    return begins_with(symbol, "_sub_I_") || begins_with(symbol, "_sub_D_");
}

bool is_landing_mark(std::string_view mnemonic)
{
    return begins_with(mnemonic, "endbr") || mnemonic == "bti" || begins_with(mnemonic, "paci");
}

Flow flow_of(Machine machine, std::string_view mnemonic)
{
    if (machine == Machine::x86_64) {
        if (is_one_of(mnemonic, {"jmp", "jmpq", "ret", "retq", "ud2", "iretq", "hlt"})) {
            return Flow::end;
        }
        return mnemonic[0] == 'j' || begins_with(mnemonic, "loop") ? Flow::branch : Flow::on;
    }
    if (is_one_of(mnemonic, {"b", "br", "ret", "retaa", "retab", "braa", "brab", "eret", "brk"})) {
        return Flow::end;
    }
    const bool conditional = begins_with(mnemonic, "b.") ||
                             is_one_of(mnemonic, {"beq", "bne", "bcs", "bhs",  "bcc", "blo", "bmi",
                                                  "bpl", "bvs", "bvc", "bhi",  "bls", "bge", "blt",
                                                  "bgt", "ble", "cbz", "cbnz", "tbz", "tbnz"});
    return conditional ? Flow::branch : Flow::on;
}

bool is_copy(Machine machine, std::string_view mnemonic, std::string_view operand)
{
    if (machine == Machine::aarch64) {
        return is_one_of(mnemonic, {"mov", "fmov"});
    }
    const std::size_t comma = std::min(operand.find(','), operand.size());
    if (is_one_of(mnemonic, {"xor", "xorl", "pxor", "xorps"})) {
        return comma < operand.size() &&
               trimmed(operand.substr(comma + 1)) == operand.substr(0, comma);
    }
    const bool in_memory = operand.find_first_of("([") != operand.npos;
    return (!in_memory || begins_with(operand, ".LC")) && begins_with(mnemonic, "mov") &&
           !begins_with(mnemonic, "movz") && !begins_with(mnemonic, "movs");
}

bool is_tail_call(Machine machine, std::string_view mnemonic, std::string_view operand)
{
    const bool jumps =
        machine == Machine::x86_64 ? is_one_of(mnemonic, {"jmp", "jmpq"}) : mnemonic == "b";
    return jumps && !begins_with(operand, ".L") && !begins_with(operand, "*");
}

bool may_not_return(Machine machine, std::string_view mnemonic, std::string_view operand)
{
    const bool calls = machine == Machine::x86_64 ? is_one_of(mnemonic, {"call", "callq"})
                                                  : is_one_of(mnemonic, {"bl", "blr"});
    const std::string_view target = operand.substr(0, operand.find('@'));
    return calls &&
           !is_one_of(target,
                      {"malloc",     "calloc",     "realloc",  "free",     "memcpy",    "memmove",
                       "memset",     "memcmp",     "memchr",   "strlen",   "strcpy",    "strncpy",
                       "strcat",     "strncat",    "strcmp",   "strncmp",  "strchr",    "strrchr",
                       "strstr",     "strspn",     "strcspn",  "strpbrk",  "strdup",    "strndup",
                       "stpcpy",     "sprintf",    "snprintf", "vsprintf", "vsnprintf", "sscanf",
                       "toupper",    "tolower",    "isalpha",  "isdigit",  "isspace",   "sqrt",
                       "pow",        "floor",      "ceil",     "fmod",     "strftime",  "abs",
                       "strcasecmp", "strncasecmp"});
}

Machine machine_of(std::string_view text)
{
    for (std::size_t at = text.find(PROBE); at != text.npos; at = text.find(PROBE, at + 1)) {
        const std::size_t start = text.rfind('\n', at) + 1;
        const std::string_view line = trimmed(text.substr(start, at - start));
        if (line == "bl" || line == "b") {
            return Machine::aarch64;
        }
        if (begins_with(line, "call") || begins_with(line, "jmp")) {
            return Machine::x86_64;
        }
    }
    if (text.find(PROBE) != text.npos) {
        throw NotInstrumentable("no probe has a known form");
    }
    return Machine::none;
}

Region::Probe probe_form(Machine machine, std::string_view mnemonic, std::string_view operand)
{
    if (is_probe_operand(operand)) {
        const bool arm = machine == Machine::aarch64;
        if (arm ? mnemonic == "bl" : is_one_of(mnemonic, {"call", "callq"})) {
            return Region::Probe::call;
        }
        if (arm ? mnemonic == "b" : is_one_of(mnemonic, {"jmp", "jmpq"})) {
            return Region::Probe::tail;
        }
    }
    throw NotInstrumentable("a probe has an unknown form: " + std::string(mnemonic) + " " +
                            std::string(operand));
}
