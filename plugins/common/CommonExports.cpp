// What every codec library of ours exports alike. It is built into each of them beside its own entry points,
// which say what the library is called.

#include "plugins/common/PluginInfo.h"

extern "C" {

MAVREL_PLUGIN_EXPORT std::uint32_t GetDLLBuildID()
{
    return MAVREL_PLUGIN_BUILD;
}

MAVREL_PLUGIN_EXPORT std::uint32_t GetDLLType()
{
    return MAVREL_PLUGIN_TYPE;
}

MAVREL_PLUGIN_EXPORT const char16_t* GetPluginInfo(std::uint32_t what)
{
    return Plugin::TextFor(Plugin::TextsOfThisPlugin(), what);
}

MAVREL_PLUGIN_EXPORT std::uint32_t GetPluginThreading()
{
    return 1;
}

}  // extern "C"
