// What can go wrong in an archive step is known before it runs: records that the compiler driver
// did not leave, a stub that cannot be compiled, members that the library loses.
#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/file_io.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "lltcov/common/coverage_names.h"
#include "lltcov/explain/explain_advice.h"
#include "lltcov/explain/explain_step.h"
#include "lltld/archive_file.h"
#include "lltld/cov_paths.h"
#include "lltld/object_scan.h"
#include "lltld/prj_settings.h"
#include "lltwrapper/archive_prepare.h"
#include "lltwrapper/classify.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

void advise_on_missing_archive(Advice& advice)
{
    const std::string cause = strArSuffix.empty()
                                  ? "option -arsuffix is missing"
                                  : "no argument after the archiver ends in " + quoted(strArSuffix);
    advice.warnings.push_back(
        cause +
        ": the step takes the project's directory itself for a work area, empties db/db*, obj/before and ini in it, and mostly fails; " +
        (strArSuffix.empty() ? "add '-arsuffix .a' before the tool"
                             : "call the archiver without lltwrapper for this"));
}

/// The letter of ar's operation, from the argument after the archiver; NUL when that has none.
char operation_of(const std::vector<std::string>& command)
{
    const auto at = std::find_if(command.begin(), command.end(), [](const std::string& text) {
        return equals_nocase(base_name(text), strArTools);
    });
    if (at == command.end() || at + 1 == command.end() || (at + 1)->compare(0, 2, "--") == 0) {
        return '\0';
    }
    const std::size_t letter = (at + 1)->find_first_of("dmpqrstx");
    return letter == std::string::npos ? '\0' : (at + 1)->at(letter);
}

void advise_on_operation(const ExplainedStep& step, Advice& advice)
{
    const char operation = operation_of(step.command);
    if (step.mode == Mode::archive && operation != '\0' && operation != 'r' && operation != 'q') {
        advice.warnings.push_back(
            std::string("operation '") + operation +
            "' fills no archive, and yet the stub is made and put into the command; call the archiver without lltwrapper for it");
    }
}

void advise_on_plain_members(const ExplainedStep& step, Advice& advice)
{
    constexpr std::size_t SHOWN = 5;
    const auto& plain = step.plain;
    std::string names;
    for (std::size_t i = 0; i < std::min(SHOWN, plain.size()); ++i) {
        names += (i == 0 ? "" : ", ") + quoted(plain[i]) +
                 (QMRFileExists(plain[i].c_str()) != 0 ? "" : " (missing)");
    }
    if (!plain.empty()) {
        advice.notes.push_back(
            "without coverage: " + names +
            (plain.size() > SHOWN ? " and " + std::to_string(plain.size() - SHOWN) + " more" : "") +
            "; what is compiled through lltwrapper and lltcc has coverage symbols");
    }
}

/// A symbol and the object that it was found in.
struct Symbol {
    std::string name;
    std::string object;
};

/// Each symbol once, as the step registers them.
std::vector<Symbol> symbols_of(const std::vector<ScannedObject>& objects)
{
    std::set<std::string> known;
    std::vector<Symbol> symbols;
    for (const ScannedObject& object : objects) {
        for (const CoverageSymbol& symbol : object.symbols) {
            if (known.insert(symbol.name).second) {
                symbols.push_back({symbol.name, object.path});
            }
        }
    }
    return symbols;
}

/// The first record of the symbol that is missing in the temporary area; empty when none is.
std::string missing_record(const char* symbol)
{
    for (const std::string& path : {temp_ini_path(symbol), temp_tab_path(symbol)}) {
        if (QMRFileExists(path.c_str()) == 0) {
            return path;
        }
    }
    const std::string object = temp_saved_object_path(symbol);
    return g_iSupportSameName == 1 && QMRFileExists(object.c_str()) == 0 ? object : "";
}

void advise_on_symbols(const std::vector<Symbol>& symbols, Advice& advice)
{
    const Symbol* unknown = nullptr;
    std::size_t count = 0;
    for (const Symbol& symbol : symbols) {
        if (symbol.name.size() > MAX_SYMBOL) {
            advice.warnings.push_back(
                "symbol " + quoted(symbol.name) + " of " + quoted(symbol.object) +
                " has more than " + std::to_string(MAX_SYMBOL) +
                " characters: the step loses it; the driver must use shorter ones");
        }
        if (!missing_record(symbol.name.c_str()).empty()) {
            unknown = unknown == nullptr ? &symbol : unknown;
            ++count;
        }
    }
    if (unknown != nullptr) {
        advice.warnings.push_back(std::to_string(count) + " of " + std::to_string(symbols.size()) +
                                  " symbols have no record, and the step fails: the first is " +
                                  quoted(unknown->name) + " of " + quoted(unknown->object) +
                                  ", which lacks " + quoted(missing_record(unknown->name.c_str())) +
                                  "; compile these sources anew");
    }
}

/// The compile command that the stub is compiled with; empty when none is recorded.
std::string stub_command(const std::vector<Symbol>& symbols)
{
    std::string text;
    for (const Symbol& symbol : symbols) {
        if (read_whole_file(temp_compile_command_path(symbol.name.c_str()), text) ==
            Reading::done) {
            return text;
        }
    }
    read_whole_file(compile_command_path(), text); // left by an earlier step
    return text;
}

void advise_on_stub(const ExplainedStep& step, const std::vector<Symbol>& symbols, Advice& advice)
{
    if (!fits_identifier(step.name)) {
        advice.warnings.push_back(
            "module name " + quoted(step.name) +
            " cannot stand in a C identifier: the stub is not compiled; name the archive with letters, digits, '_' and '-'");
    }
    const std::string command = stub_command(symbols);
    if (command.empty()) {
        advice.warnings.push_back(
            "no member has a recorded compile command: the stub is not compiled; compile the members anew");
    } else if (env_int("LLT_DISABLE_SOCKET") != 1 && !declares_port(command)) {
        advice.warnings.push_back(
            "sockets are enabled, and the recorded compile command declares no g_TUSKSockBindPort: the stub is not compiled; set LLT_DISABLE_SOCKET=1, or add -include HEADER");
    }
}

/// A library is what one command makes of it: database and stub know the members of the last one.
void advise_on_kept_members(const ExplainedStep& step, Advice& advice)
{
    const auto& counted = step.archive.members;
    const bool counts_itself =
        std::any_of(counted.begin(), counted.end(), [&](const ScannedObject& object) {
            return object.path == step.decision.archive_path;
        });
    std::string text;
    if (counts_itself || read_whole_file(step.decision.archive, text) != Reading::done) {
        return;
    }
    for (const ArchiveMember& member : read_archive_file(text).members) {
        const std::string kept(member.name);
        const auto& named = step.named;
        const bool replaced = std::any_of(named.begin(), named.end(), [&](const std::string& path) {
            return base_name(path) == kept;
        });
        if (!replaced && member.content.find(ARRAY_PREFIX) != std::string_view::npos &&
            !begins_with(kept, STUB_PREFIX)) {
            advice.warnings.push_back(
                quoted(kept) + " stays in " + quoted(step.decision.archive) +
                " but is not in this command, so not in its stub either; build the library by one command from all members");
            return;
        }
    }
}

} // namespace

void advise_on_archive(const ExplainedStep& step, Advice& advice)
{
    if (step.decision.archive.empty()) {
        advise_on_missing_archive(advice);
        return;
    }
    advise_on_operation(step, advice);
    advise_on_plain_members(step, advice);
    if (step.mode == Mode::archive && !g_lxprj->isCovDictPathCut &&
        env_is_filled("qmr_current_prj_path")) {
        const auto symbols = symbols_of(step.archive.members);
        advise_on_symbols(symbols, advice);
        advise_on_stub(step, symbols, advice);
        advise_on_kept_members(step, advice);
    }
}
