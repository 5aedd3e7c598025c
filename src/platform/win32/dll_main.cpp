// The load entry of stats_mng.dll does nothing: start-up and tear-down are the library's
// load-order table, run by the runtime's static initialisers and terminators.
#include "platform/win32/internal.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) { return TRUE; }
