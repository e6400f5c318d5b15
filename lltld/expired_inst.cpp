// Four places per symbol. Kept: the saved object has exactly the symbol's name; entries of the
// after area have suffixes, so there all names that begin with the symbol and a full stop go.
#include "lltld/expired_inst.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/file_tree.h"
#include "commonfunc/message.h"
#include "lltld/cov_paths.h"

#include <string>

void DeleteInstInfoFromLLTTEMP(const char* symbol)
{
    const std::string name = symbol;
    if (name.empty() || name == ".." || name.find('/') != std::string::npos ||
        g_lxprj->szLLTTEMP[0] == '\0') {
        warn(
            "nothing is removed for the superseded symbol '%s' in '%s': this would reach beyond one symbol's files; recompile the sources if coverage looks stale",
            symbol, g_lxprj->szLLTTEMP);
        return;
    }
    remove_tree(temp_db_dir(symbol));
    remove_tree(temp_ini_path(symbol));
    remove_entries(temp_after_dir(), name + ".");
    remove_tree(temp_saved_object_path(symbol));
}
