// The descriptions of the system's own modules: their tables of types and heaps, and the
// factories of the seven modules with storable classes. They are registered while the library
// loads, in the order of their numbers, so that module 1 is the oldest record of the chain.
#include "Generated/ActionName.h"
#include "Generated/ErrorEnums.h"
#include "environment/EnvironmentEnums.h"
#include "environment/FileName.h"
#include "environment/OsInfo.h"
#include "environment/Time.h"
#include "runtime/Enumerations.h"
#include "runtime/Heap.h"
#include "runtime/ModuleDescriptor.h"

void _aRegisterSystemModules();
void _aRegisterSystemModule(int number, _eHndl<_eModuleDescriptorData> data, _eFactory factory, _eHeapOf heapOf);

namespace {

using Separators = _eSeq<_eSeparatorId::_eEnum>;

_eTypeTableEntry plain(const wchar_t* name) { return {name, 0, {}}; }

_eTypeTableEntry templated(const wchar_t* name, int parameterCount, Separators separators = {}) {
    return {name, parameterCount, std::move(separators)};
}

_eSeq<_eTypeTableEntry> plainTypes(std::initializer_list<const wchar_t*> names) {
    _eSeq<_eTypeTableEntry> types;
    for (const wchar_t* name : names) types.pushBack(plain(name));
    return types;
}

_eSeq<_eTypeTableEntry> builtInTypes() {
    using S = _eSeparatorId;
    _eSeq<_eTypeTableEntry> types = plainTypes({L"int", L"bool", L"char", L"real", L"byte", L"rank"});
    for (const _eTypeTableEntry& entry :
         {templated(L"seq", 1), templated(L"set", 1), templated(L"bag", 1), templated(L"map", 2, {S::RightArrow}),
          templated(L"pair", 2, {S::Comma}), templated(L"triple", 3, {S::Comma, S::Comma}),
          templated(L"_eMultiple2", 2, {S::Comma}), templated(L"_eMultiple3", 3, {S::Comma, S::Comma}),
          templated(L"_eMultiple4", 4, {S::Comma, S::Comma, S::Comma}), templated(L"$Ref", 1)})
        types.pushBack(entry);
    return types.concat(plainTypes({L"", L"_aExceptionId", L"_eComplexValue", L"Environment", L"_eSocket", L"FileRef",
                             L"_lLowLevelSupport", L"_eAnyBase", L"_eAddress"}));
}

template <class X>
_eFrom<_eAny> enumeration() {
    return _eHndl<typename X::_eWrapper>(new typename X::_eWrapper(typename X::_eEnum(0)));
}

template <class T>
_eFrom<_eAny> basic() {
    return _eHndl<_eBasicTypeWrapper<T>>(new _eBasicTypeWrapper<T>(T()));
}

template <class T>
_eFrom<_eAny> made() {
    return _eHndl<T>(new T());
}

// The factory of a module whose one storable class stands in row `Row`.
template <int Row, _eFrom<_eAny> (*Make)()>
_eFrom<_eAny> onlyRow(int typeIndex) {
    return typeIndex == Row ? Make() : _eFrom<_eAny>();
}

_eFrom<_eAny> builtInFactory(int typeIndex) {
    switch (typeIndex) {
        case 0: return basic<std::int32_t>();
        case 1: return basic<bool>();
        case 2: return basic<wchar_t>();
        case 3: return basic<double>();
        case 4: return basic<unsigned char>();
        default: return {};
    }
}

_eFrom<_eAny> environmentFactory(int typeIndex) {
    switch (typeIndex) {
        case 1: return made<Time>();
        case 2: return enumeration<FileModeType>();
        case 3: return enumeration<FileError>();
        case 4: return enumeration<FileAttribute>();
        case 5: return enumeration<OsType>();
        case 6: return made<OsInfo>();
        case 8: return enumeration<DebugType>();
        case 10: return enumeration<_eSeparatorId>();
        case 11: return enumeration<SerialErrorType>();
        case 13: return enumeration<SocketMode>();
        case 14: return enumeration<SocketError>();
        default: return {};
    }
}

_eHeap* streamHeapOf() { return _eHeap::streamHeap(); }

struct SystemModule {
    std::initializer_list<const wchar_t*> types;
    _eFactory factory = nullptr;
};

void registerAll() {
    const SystemModule modules[] = {
        {{L"Context"}},
        {{L"ElementBase"}},
        {{L"ErrorSeverity", L"ErrorInfo", L"Error"}, (onlyRow<0, enumeration<ErrorSeverity>>)},
        {{L"FileName"}, (onlyRow<0, made<FileName>>)},
        {{L"XMLParser"}},
        {{L"ImportOptions"}},
        {{L"Location"}},
        {{L"NonTerminal"}},
        {{L"ParseControl"}},
        {{L"ActionName", L"ActionTableEntry", L"ReduceTableEntry", L"Parser"}, (onlyRow<0, enumeration<ActionName>>)},
        {{L"TarvaneElements"}},
        {{L"TarvaneOutput"}},
        {{L"StackEntry", L"ParseStack"}},
        {{L"StackValue"}},
        {{L"StringUtils"}},
        {{L"XMLEntityValueElement", L"XMLCharValue", L"XMLReferenceValue", L"XMLPEReferenceValue", L"XMLContentItem",
          L"XMLString", L"XMLNumber", L"XMLPEReference", L"XMLEmptyElemTag", L"XMLSTag", L"XMLETag", L"XMLAttribute",
          L"XMLAttributeList", L"XMLEntityValue", L"XMLReference", L"XMLEntityReference", L"XMLCharReference",
          L"XMLAttributeValue", L"XMLCharData", L"XMLCDSect"}},
        {{L"TarvaneSections", L"XMLcontent"}},
        {{L"XMLDictionary"}},
        {{L"XMLDocument"}},
        {{L"XMLElement", L"ElementCreation", L"UnrecognisedElement", L"XMIRootElement", L"XMIContentElement",
          L"Model_ManagementModelElement", L"FCNamespaceOwnedElement", L"Model_ManagementPackageElement",
          L"FCClassElement", L"FCClassifierFeatureElement", L"FCAttributeElement", L"FCOperationElement",
          L"FCAssociationElement", L"FCGeneralizationElement"}},
        {{L"XMLErrorType", L"XMLError"}, (onlyRow<0, enumeration<XMLErrorType>>)},
        {{L"XMLImporter", L"ValidityStatus"}, (onlyRow<1, enumeration<ValidityStatus>>)},
        {{L"XMLLex"}},
        {{L"XMLNode"}},
        {{L"Terminal", L"SimpleTerminal", L"ComplexTerminal"}},
        {{L"TemplateArgActual", L"UnionArg", L"NonUnionArg", L"SimpleTypeArg", L"TemplateTypeArg", L"HeapTableEntry",
          L"TypeTableEntry", L"InstantiationTableEntry"}},
        {{L"TypeInfo", L"InstblTypeInfo", L"UninstblTypeInfo"}},
        {{}, builtInFactory},  // the built-in table
        {{L"FilePath", L"Time", L"FileModeType", L"FileError", L"FileAttribute", L"OsType", L"OsInfo", L"FileMode",
          L"DebugType", L"FileStats", L"_SeparatorId", L"SerialErrorType", L"_eEnvironmentSupport", L"SocketMode",
          L"SocketError"},
         environmentFactory},
        {{L"BaseNode", L"LeafNode", L"BranchNode"}},
        {{L"_Storable", L"_ModuleDescriptorData", L"_SerialError"}},
        {{L"StorageStream", L"StoreStream", L"FillStream", L"HeapInfo", L"HeapMatcher", L"_UrelException",
          L"StreamException"}},
        {{L"_Comparator", L"_SimpleComparator", L"_ReverseComparator"}},
        {{L"TemplateTypeMatcher", L"CandidateMDAnode"}},
        {{L"_ByteData", L"_InputStream", L"_OutputStream", L"FileInputStreamBase", L"_FileInputStream",
          L"_StandardInputStream", L"FileOutputStreamBase", L"_FileOutputStream", L"_StandardOutputStream",
          L"_MemoryInputStream", L"_MemoryOutputStream"}},
        {{L"StreamHeader"}},
        {{L"CharEncoderDecoder", L"CharEncoder", L"CharDecoder", L"_DefaultEncoder", L"_DefaultDecoder",
          L"_AsciiEncoder", L"_AsciiDecoder", L"_UTF8_Encoder", L"_UTF8_Decoder"}},
    };
    static_assert(std::size(modules) == _aSystemModuleCount);
    for (int number = 1; number <= _aSystemModuleCount; ++number) {
        const SystemModule& module = modules[number - 1];
        _eSeq<_eHeapTableEntry> heaps;
        if (number == 35) heaps.pushBack({_eHndl<_aHeapInfo>(new _aHeapInfo(_eSeq<_eString>(_eString(L"_StreamHeap"))))});
        _eSeq<_eTypeTableEntry> types = number == 28 ? builtInTypes() : plainTypes(module.types);
        _aRegisterSystemModule(number, _eHndl<_eModuleDescriptorData>(new _eModuleDescriptorData(heaps, types)),
                               module.factory, number == 35 ? streamHeapOf : nullptr);
    }
}

// The records are made while the library loads; an earlier caller of the chain makes them first.
[[maybe_unused]] const bool registeredAtLoad = (_aRegisterSystemModules(), true);

}  // namespace

void _aRegisterSystemModules() {
    static bool registered = false;
    if (registered) return;
    registered = true;
    registerAll();
}
