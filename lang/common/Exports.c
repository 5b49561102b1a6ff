/* What every language library exports. The resources beside it are all that a language consists of, so the
 * library needs no runtime. */

#include "base/Windows.h"

#include "plugins/plugin.h"

/* The bit of GetDLLType that marks an interface language. */
#define LANGUAGE_TYPE 16u

MAVREL_PLUGIN_EXPORT uint32_t GetDLLBuildID(void);
MAVREL_PLUGIN_EXPORT uint32_t GetDLLType(void);
MAVREL_PLUGIN_EXPORT const wchar_t* GetDLLInfo(void);
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved);

uint32_t GetDLLBuildID(void)
{
    return MAVREL_PLUGIN_BUILD;
}

uint32_t GetDLLType(void)
{
    return LANGUAGE_TYPE;
}

const wchar_t* GetDLLInfo(void)
{
    return L"Interface language for Mavrel";
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved)
{
    (void)library;
    (void)reason;
    (void)reserved;
    return TRUE;
}
