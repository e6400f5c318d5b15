// The project settings object: its life and the two switches that it reads itself.
#include "commonfunc/Caddis_func.h"
#include "commonfunc/env.h"
#include "commonfunc/text.h"

#include <optional>

namespace
{

/// A local static, so that the instance exists whichever source file asks for it first during
/// static initialisation. It needs no memory of the heap: nobody could catch its failure then.
std::optional<LinuxPrjItem>& instance_slot()
{
    static std::optional<LinuxPrjItem> instance;
    return instance;
}

} // namespace

LinuxPrjItem::LinuxPrjItem()
{
    copy_bounded(szPrjName, "linuxcaddis");
}

LinuxPrjItem* LinuxPrjItem::GetInstance()
{
    if (!instance_slot()) {
        instance_slot().emplace();
    }
    return &*instance_slot();
}

void LinuxPrjItem::ReleaseInstance()
{
    instance_slot().reset();
}

void LinuxPrjItem::set_vbsflag()
{
    if (env_is_filled("USE_TUSK_VBS")) {
        m_uiUseVBS = env_is_nonzero("USE_TUSK_VBS") ? 1 : 0;
    }
}

unsigned int LinuxPrjItem::isDisableUserConfig()
{
    return env_is_nonzero("LLT_DISABLE_USRCFG");
}
