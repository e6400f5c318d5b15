// One walk over the command, one method per kind of character. Bytes of more than 127 are letters,
// as they are to the shell in the C locale. What an expansion would give is not asked: that could
// run programs. Brace lists count as live, since /bin/sh may be a shell that has them.
#include "lltcov/explain/explain_words.h"

#include "commonfunc/text.h"

#include <cctype>
#include <cstdio>

namespace
{

constexpr char OPERATORS[] = ";|&<>()\n";

bool is_one_of(char c, const char* characters)
{
    return std::string(characters).find(c) != std::string::npos;
}

class Splitter
{
public:
    explicit Splitter(const std::string& command) : in_(command) {}

    ShellWords run();

private:
    bool at_end() const { return at_ >= in_.size(); }
    void add(char c);
    void mark_live(char c);
    void end_word();
    void take_operator();
    void take_comment();
    void take_character();
    void take_backslash();
    void take_single_quotes();
    void take_double_quotes();
    void take_expansion();
    void take_group(std::size_t length, char opening, char closing);
    bool begins_brace_list() const;

    const std::string& in_;
    std::size_t at_ = 0;
    ShellWord word_;
    bool in_word_ = false; ///< also true for an empty quoted word
    ShellWords out_;
};

void Splitter::add(char c)
{
    word_.text += c;
    in_word_ = true;
}

void Splitter::mark_live(char c)
{
    if (word_.live.find(c) == std::string::npos) {
        word_.live += c;
    }
}

void Splitter::end_word()
{
    if (in_word_) {
        out_.words.push_back(word_);
    }
    word_ = ShellWord();
    in_word_ = false;
}

void Splitter::take_operator()
{
    end_word();
    while (!at_end() && is_one_of(in_[at_], OPERATORS)) {
        mark_live(in_[at_]);
        add(in_[at_++]);
    }
    end_word();
}

void Splitter::take_comment()
{
    mark_live('#');
    while (!at_end() && in_[at_] != '\n') {
        add(in_[at_++]);
    }
}

void Splitter::take_backslash()
{
    if (at_ + 1 == in_.size()) {
        add('\\'); // nothing follows: it stands for itself
    } else if (in_[at_ + 1] != '\n') {
        add(in_[at_ + 1]);
    }
    at_ += 2;
}

void Splitter::take_single_quotes()
{
    in_word_ = true;
    for (++at_; !at_end() && in_[at_] != '\''; ++at_) {
        add(in_[at_]);
    }
    if (at_end()) {
        out_.open = '\'';
    }
    ++at_;
}

void Splitter::take_double_quotes()
{
    in_word_ = true;
    ++at_;
    while (!at_end() && in_[at_] != '"') {
        const char c = in_[at_];
        if (c == '$' || c == '`') {
            take_expansion();
        } else if (c == '\\' && at_ + 1 < in_.size() && is_one_of(in_[at_ + 1], "$`\"\\\n")) {
            take_backslash();
        } else {
            add(c);
            ++at_;
        }
    }
    if (at_end()) {
        out_.open = '"';
    }
    ++at_;
}

/// Takes what stands from here to the bracket that closes it, as it is; `length` bytes open it.
void Splitter::take_group(std::size_t length, char opening, char closing)
{
    int depth = 1;
    for (; length > 0; --length) {
        add(in_[at_++]);
    }
    while (!at_end() && depth > 0) {
        const char c = in_[at_];
        if (c == '\\' && at_ + 1 < in_.size()) {
            add(in_[at_++]);
        } else if (c == closing) {
            --depth;
        } else if (c == opening) {
            ++depth;
        }
        add(in_[at_++]);
    }
    if (depth > 0) {
        out_.open = opening;
    }
}

void Splitter::take_expansion()
{
    if (in_[at_] == '`') {
        mark_live('`');
        take_group(1, '`', '`');
        return;
    }
    std::size_t after = at_ + 1;
    while (in_.compare(after, 2, "\\\n") == 0) {
        after += 2; // a line is continued before the name
    }
    const char next = after < in_.size() ? in_[after] : '\0';
    const bool is_name = std::isalnum(static_cast<unsigned char>(next)) != 0 || next == '_';
    const bool is_group = next == '(' || next == '{';
    const bool is_special = next != '\0' && is_one_of(next, "@*#?$!-");
    add('$'); // alone it stands for itself
    ++at_;
    if (!is_group && !is_name && !is_special) {
        return;
    }
    mark_live('$');
    at_ = after;
    if (is_group) {
        take_group(1, next, next == '(' ? ')' : '}');
    } else {
        add(in_[at_++]);
    }
}

/// "{a,b}" and "{1..3}".
bool Splitter::begins_brace_list() const
{
    const std::size_t end = in_.find_first_of("} \t\n\"'", at_);
    if (end == std::string::npos || in_[end] != '}') {
        return false;
    }
    const std::string inside = in_.substr(at_, end - at_);
    return inside.find(',') != std::string::npos || inside.find("..") != std::string::npos;
}

void Splitter::take_character()
{
    const char c = in_[at_];
    const bool lives =
        is_one_of(c, "*?[") || (c == '~' && !in_word_) || (c == '{' && begins_brace_list());
    if (lives) {
        mark_live(c);
    }
    add(c);
    ++at_;
}

ShellWords Splitter::run()
{
    while (!at_end()) {
        const char c = in_[at_];
        if (c == ' ' || c == '\t') {
            end_word();
            ++at_;
        } else if (is_one_of(c, OPERATORS)) {
            take_operator();
        } else if (c == '#' && !in_word_) {
            take_comment();
        } else if (c == '\\') {
            take_backslash();
        } else if (c == '\'') {
            take_single_quotes();
        } else if (c == '"') {
            take_double_quotes();
        } else if (c == '$' || c == '`') {
            take_expansion();
        } else {
            take_character();
        }
    }
    end_word();
    return out_;
}

} // namespace

ShellWords split_for_shell(const std::string& command)
{
    return Splitter(command).run();
}

std::string visible(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\t' || c == '\n') {
            out += c == '\t' ? "\\t" : "\\n";
        } else if (is_control(c)) {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned char>(c));
            out += code;
        } else {
            out += c;
        }
    }
    return out;
}

std::string bracketed(const std::string& text)
{
    return "[" + visible(text) + "]";
}
