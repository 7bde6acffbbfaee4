#include "support/TestModule.h"

_eModuleDescriptor testModule;

namespace {

// Registered while the test program loads, after the system's own modules. Its last row
// repeats a name of the system, so that a lookup by name finds the newer module first.
[[maybe_unused]] const bool registered = [] {
    _eSeq<_eTypeTableEntry> types;
    for (const wchar_t* name :
         {L"Probe", L"Shape", L"Circle", L"Square", L"Disc", L"Tagged", L"BracketParser", L"FileName"})
        types.pushBack({name, 0, {}});
    registerModule(testModule, _eHndl<_eModuleDescriptorData>(new _eModuleDescriptorData({}, types)), nullptr, 0,
                   nullptr);
    return true;
}();

}  // namespace
