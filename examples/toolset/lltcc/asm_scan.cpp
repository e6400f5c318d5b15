// One pass over the lines. Labels and jumps bound regions. What stands between #APP and #NO_APP is
// the programmer's own text: it counts as instructions, whatever it does.
//
// A region's traces say which lines it has instructions of, and where the optimiser has left
// nothing of a statement but the mark of its beginning; which of them count is settled behind the
// pass. The mark of an empty statement (the `;` behind a block or a macro) says nothing.
#include "asm_scan.h"

#include "asm_settle.h"
#include "asm_syntax.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace
{

class Scanner
{
public:
    Scanner(AsmText& out, SourceFiles& files, bool has_marks)
        : out_(out), files_(files), has_marks_(has_marks)
    {
    }

    /// The traces of the regions that were read.
    std::vector<std::vector<Trace>> read(std::string_view text)
    {
        for (std::size_t from = 0; from < text.size();) {
            const std::size_t end = std::min(text.find('\n', from), text.size());
            out_.text.push_back(text.substr(from, end - from));
            from = end + 1;
            read_line(trimmed(out_.text.back()));
        }
        return std::move(traces_);
    }

private:
    void read_line(std::string_view line)
    {
        if (begins_with(line, "#APP") || begins_with(line, "//APP")) {
            inline_ = true;
        } else if (begins_with(line, "#NO_APP") || begins_with(line, "//NO_APP")) {
            inline_ = false;
        } else if (inline_) {
            note_instruction();
        } else if (!line.empty() && line[0] != '#' && !begins_with(line, "//")) {
            const std::size_t colon = line.find(':');
            if (colon != line.npos && line.find_first_of(" \t\"") > colon) {
                read_label(line.substr(0, colon));
            } else if (line[0] == '.') {
                read_directive(line);
            } else {
                read_instruction(trimmed(line.substr(0, line.find('#'))));
            }
        }
    }

    void read_label(std::string_view label)
    {
        if (function_names_.count(std::string(label)) != 0) {
            out_.functions.push_back({std::string(label.substr(0, label.find('.'))), {0, 0}});
            open_region();
            if (label.find(".cold") == label.npos) {
                out_.regions.back().probe = Region::Probe::entry;
            }
        } else if (is_jump_target(label) && !out_.functions.empty()) {
            open_region();
            at_target_ = true;
        }
    }

    void read_directive(std::string_view line)
    {
        if (begins_with(line, ".loc\t") || begins_with(line, ".loc ")) {
            read_location(line);
        } else if (begins_with(line, ".file")) {
            read_file(directive_words(line));
        } else if (begins_with(line, ".type")) {
            const auto word = directive_words(line);
            if (word.size() >= 3 && word[2].find("function") != std::string::npos) {
                function_names_.insert(word[1]);
            }
        } else if (begins_with(line, ".intel_syntax")) {
            out_.intel_syntax = true;
        }
    }

    void read_location(std::string_view line)
    {
        if (!out_.functions.empty() && is_sanitizer_start(out_.functions.back().symbol)) {
            return; // stands at the end of the file, whatever line that is
        }
        const auto word = directive_words(line);
        const Location location = location_of(word);
        // For code without a location the compiler repeats the last one when debug information
        // needs a view number there.
        const bool repeated = location == location_ && at_line_ == SourceLine{0, 0};
        at_copy_ = at_copy_ && location == location_;
        location_ = location;
        const auto mark = std::find(word.begin(), word.end(), "is_stmt");
        if (mark != word.end() && mark + 1 != word.end()) {
            is_mark_ = *(mark + 1) == "1";
        }
        if (!repeated) {
            note_location(location);
        }
    }

    void note_location(const Location& location)
    {
        const auto [file, line, column, discriminator] = location;
        (void)discriminator;
        const char begin = files_.character(file, line, column);
        at_line_ = {file, line};
        at_brace_ = begin == '}';
        if (!out_.functions.empty() && out_.functions.back().line.second == 0) {
            // C functions begin at their brace (for clang: in its line), maybe below the name.
            Function& function = out_.functions.back();
            const int named = begin == '{' || column == 0
                                  ? files_.line_of_name(file, line, name_in_source(function.symbol))
                                  : 0;
            at_line_.second = named != 0 ? named : line;
            function.line = at_line_;
        }
        if (has_marks_ && is_mark_ && line > 0 && begin != ';') {
            marks_.push_back(trace(Trace::Kind::mark));
        }
    }

    void read_file(const std::vector<std::string>& word)
    {
        if (word.size() == 2) {
            out_.main_name = word[1];
        } else if (word.size() > 2 && std::isdigit(static_cast<unsigned char>(word[1][0])) != 0) {
            const bool has_directory = word.size() >= 4 && word[3] != "md5";
            files_.add(std::atoi(word[1].c_str()), has_directory ? word[2] : "",
                       has_directory ? word[3] : word[2]);
        }
    }

    void read_instruction(std::string_view line)
    {
        const std::size_t blank = std::min(line.find_first_of(" \t"), line.size());
        const std::string_view mnemonic = line.substr(0, blank);
        const std::string_view operand = trimmed(line.substr(blank));
        if (line.find(PROBE) != line.npos) {
            read_probe(probe_form(out_.machine, mnemonic, operand));
            return;
        }
        if (at_target_ && mnemonic == "nop") {
            out_.regions.back().probe = Region::Probe::nop;
        }
        const Flow flow = flow_of(out_.machine, mnemonic);
        const bool tail_call = is_tail_call(out_.machine, mnemonic, operand);
        at_copy_ = is_copy(out_.machine, mnemonic, operand) ||
                   (at_copy_ && flow == Flow::end && !tail_call);
        if (at_copy_ && has_marks_ && !at_entry()) {
            note_copy();
        } else if (!is_landing_mark(mnemonic)) {
            note_instruction();
        }
        if (open_ && tail_call) {
            forget_braces();
        }
        if (open_ && may_not_return(out_.machine, mnemonic, operand)) {
            open_region();
            out_.regions.back().probe = Region::Probe::after;
        } else if (flow == Flow::branch) {
            open_region();
        } else if (flow == Flow::end) {
            open_ = false;
        }
    }

    /// In front of a tail call the stack is cleared at the function's closing brace, which the
    /// source has behind the call.
    void forget_braces()
    {
        std::vector<Trace>& traces = traces_.back();
        traces.erase(std::remove_if(traces.begin(), traces.end(),
                                    [](const Trace& t) { return t.kind == Trace::Kind::brace; }),
                     traces.end());
    }

    void read_probe(Region::Probe form)
    {
        if (out_.functions.empty()) {
            throw NotInstrumentable("a probe outside of any function");
        }
        if (!open_ || (out_.regions.back().probe != Region::Probe::none && !at_entry())) {
            go_on(form); // the location in front of the probe is the new block's
        }
        note_instruction();
        out_.regions.back().probe = form;
        out_.regions.back().at = out_.text.size() - 1;
        open_ = form == Region::Probe::call;
    }

    /// Begins a region behind the line just read. The compiler gives code a location of its own
    /// behind a label; code without one has none, not that of the code above. Behind a call it is
    /// what takes the result, a part of the call.
    void open_region()
    {
        if (open_) {
            note_marks();
        }
        marks_.clear();
        at_line_ = {0, 0};
        open_ = true;
        out_.regions.emplace_back();
        out_.regions.back().function = static_cast<int>(out_.functions.size()) - 1;
        traces_.emplace_back();
    }

    bool at_entry() const { return open_ && out_.regions.back().probe == Region::Probe::entry; }

    /// Begins a region that is reached only from the code above, with its location.
    void go_on(Region::Probe form)
    {
        const SourceLine line = at_line_;
        std::vector<Trace> marks;
        marks.swap(marks_);
        open_region();
        at_line_ = line;
        marks_.swap(marks);
        out_.regions.back().probe = form;
    }

    void note_instruction()
    {
        note_copy();
        if (open_ && at_line_.second > 0) {
            traces_.back().push_back(trace(Trace::Kind::code));
        }
    }

    /// The optimiser copies a value (`return 0`, `i = 0`) to where several ways meet, with the
    /// location of one of them. A statement of its own has its mark besides.
    void note_copy()
    {
        at_target_ = false;
        if (open_) {
            note_marks();
            note_place();
        }
    }

    void note_marks()
    {
        if (!marks_.empty()) {
            note_place();
            traces_.back().insert(traces_.back().end(), marks_.begin(), marks_.end());
            marks_.clear();
        }
    }

    void note_place()
    {
        if (out_.regions.back().at == 0) {
            out_.regions.back().at = out_.text.size() - 1;
        }
    }

    Trace trace(Trace::Kind kind) const
    {
        return {at_line_, at_brace_ ? Trace::Kind::brace : kind};
    }

    AsmText& out_;
    SourceFiles& files_;
    const bool has_marks_; ///< the compiler marks beginnings of statements
    std::set<std::string> function_names_;
    std::vector<std::vector<Trace>> traces_; ///< of the regions
    std::vector<Trace> marks_;               ///< since the last instruction
    Location location_{};                    ///< as last written
    SourceLine at_line_{0, 0};               ///< of the next instruction
    bool at_brace_ = false;
    bool is_mark_ = true;
    bool at_copy_ = false;   ///< only copies since the last location
    bool at_target_ = false; ///< no instruction since the label
    bool open_ = false;      ///< code that can run is being read
    bool inline_ = false;
};

} // namespace

AsmText scan_assembly(std::string_view text, SourceFiles& files, Marks marks)
{
    AsmText out;
    out.machine = machine_of(text);
    const std::string_view ident = text.substr(std::min(text.rfind("\t.ident\t"), text.size()));
    out.has_long_blocks = ident.substr(0, ident.find('\n')).find("clang") != ident.npos;
    const bool has_marks = text.find(" is_stmt 0") != text.npos;
    settle_lines(out, Scanner(out, files, has_marks).read(text), marks);
    return out;
}
