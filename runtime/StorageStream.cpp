#include "runtime/StorageStream.h"

#include "runtime/TypeMatcher.h"
#include "runtime/UrelException.h"

const wchar_t* const _eCVCodeNames[_eCVCodeCount] = {
    L"CV_RSVD",     L"CV_SYSSTR",   L"CV_REP",       L"CV_NULL",      L"CV_END",       L"CV_HNDL",
    L"CV_ANOTHERHNDL", L"CV_SMALL", L"CV_REF",       L"CV_ANOTHERREF", L"CV_UNION",    L"CV_COLLECTION",
    L"CV_ENUM_1",   L"CV_ENUM_2",   L"CV_ENUM_4",    L"CV_INT_0",     L"CV_INT_1",     L"CV_INT_2",
    L"CV_INT_4",    L"CV_INT_8",    L"CV_INT_L",     L"CV_CHAR",      L"CV_BOOL",      L"CV_REAL",
    L"CV_DOUBLE",   L"CV_DCL_HEAP", L"CV_DCL_STYPE", L"CV_DCL_TTYPE", L"CV_DCL_INSTN", L"CV_BYTE"};

namespace {

// A run's count has two bytes; another reader may take them as signed, so runs stop at this length.
constexpr std::int32_t longestRun = 32767;

// Raises the stream failure when a transfer of the byte stream went wrong.
void check(FileError::_eEnum error, SerialErrorType::_eEnum kind, const wchar_t* message) {
    if (error != FileError::success) streamFailure(kind, message);
}

// The code and payload width of an integer: the ranges are symmetrical around 0.
void intForm(std::int32_t value, std::int32_t& code, int& width) {
    std::int64_t magnitude = value < 0 ? -std::int64_t(value) : std::int64_t(value);
    if (value == 0) {
        code = CV_INT_0;
        width = 0;
    } else if (magnitude <= 127) {
        code = CV_INT_1;
        width = 1;
    } else if (magnitude <= 32767) {
        code = CV_INT_2;
        width = 2;
    } else if (magnitude <= 2147483647) {
        code = CV_INT_4;
        width = 4;
    } else {
        code = CV_INT_8;
        width = 8;
    }
}

int enumWidth(std::int32_t code) { return code == CV_ENUM_1 ? 1 : code == CV_ENUM_2 ? 2 : 4; }

// The payload as an unsigned number of its width, whatever sign the byte stream gave it.
std::int64_t unsignedOf(std::int64_t value, int width) {
    return width >= 8 ? value : std::int64_t(std::uint64_t(value) & ((std::uint64_t(1) << (8 * width)) - 1));
}

// An enumeration is declared by its storage name. Where no module has a row of that name, the
// row of the name without its leading "_" stands for it, as the environment's tables spell it.
_eHndl<_eInstblTypeInfo> enumerationType(const _eString& storageName) {
    if (storageName.size() > 1 && storageName.at(0) == L'_') {
        _eTypeTableEntry wanted{storageName, 0, {}};
        if (_eTemplateTypeMatcher::shared().match(wanted).isNull()) {
            _eString bare(std::wstring_view(toWString(storageName)).substr(1));
            if (!_eTemplateTypeMatcher::shared().match({bare, 0, {}}).isNull())
                return _eInstblTypeInfo::makeType(bare, false, false);
        }
    }
    return _eInstblTypeInfo::makeType(storageName, false, false);
}

}  // namespace

bool StoreStream::equalFields(const StoreStream& other) const {
    return StorageStream::equalFields(other) && stream == other.stream && typeIndexes == other.typeIndexes &&
           templateIndexes == other.templateIndexes && objectIndexes == other.objectIndexes &&
           nextTypeIndex == other.nextTypeIndex && nextTemplateIndex == other.nextTemplateIndex &&
           nextObjectIndex == other.nextObjectIndex && encoder == other.encoder;
}

void StoreStream::writeCode(std::int32_t code) {
    FileError::_eEnum error;
    stream.get()->writeByte((unsigned char)code, error);
    check(error, SerialErrorType::writeError, L"writing CV code to storage-stream");
}

void StoreStream::writeCodeUnlessInRun(std::int32_t code) {
    if (repeatCount != 0)
        --repeatCount;
    else
        writeCode(code);
}

void StoreStream::writePayload(std::int64_t value, int width, const wchar_t* failure) {
    FileError::_eEnum error;
    stream.get()->writeInt(value, width, error);
    check(error, SerialErrorType::writeError, failure);
}

void StoreStream::storeInt(std::int32_t value) {
    _eFreeze freeze(this);
    std::int32_t code;
    int width;
    intForm(value, code, width);
    writeCode(code);
    if (width != 0) writePayload(value, width, L"writing int to storage-stream");
}

template <class Transfer>
void StoreStream::writeValue(std::int32_t code, const wchar_t* failure, Transfer transfer) {
    _eFreeze freeze(this);
    writeCodeUnlessInRun(code);
    FileError::_eEnum error;
    transfer(*stream.get(), error);
    check(error, SerialErrorType::writeError, failure);
}

void StoreStream::storeBool(bool value) {
    writeValue(CV_BOOL, L"writing bool to storage-stream",
               [&](_OutputStream& out, FileError::_eEnum& error) { out.writeByte(value ? 1 : 0, error); });
}

void StoreStream::storeChar(wchar_t value) {
    writeValue(CV_CHAR, L"writing char to storage-stream",
               [&](_OutputStream& out, FileError::_eEnum& error) { out.writeChar(value, *encoder, error); });
}

void StoreStream::storeDouble(double value) {
    writeValue(CV_DOUBLE, L"writing real to storage-stream",
               [&](_OutputStream& out, FileError::_eEnum& error) { out.writeDouble(value, error); });
}

void StoreStream::storeByte(unsigned char value) {
    writeValue(CV_BYTE, L"writing byte to storage-stream",
               [&](_OutputStream& out, FileError::_eEnum& error) { out.writeByte(value, error); });
}

void StoreStream::storeEnum(const _eString& typeName, std::int32_t value) {
    _eFreeze freeze(this);
    auto number = std::uint32_t(value);
    std::int32_t code = number <= 255 ? CV_ENUM_1 : number <= 65535 ? CV_ENUM_2 : CV_ENUM_4;
    _eHndl<_eInstblTypeInfo> type = enumerationType(typeName);
    declareType(type);
    writeCode(code);
    storeInt(typeIndexes.get(type));
    writePayload(value, enumWidth(code), L"writing enum to storage-stream");
}

void StoreStream::storeCollection(std::int32_t size) {
    _eFreeze freeze(this);
    writeCode(CV_COLLECTION);
    storeInt(size);
}

void StoreStream::storeRepeat(std::int32_t code, std::int32_t count) {
    if (count <= 1) return;
    _eFreeze freeze(this);
    repeatCode = code;
    repeatCount = count;
    writeCode(CV_REP);
    writePayload(count, 2, L"writing repeated-item count to storage-stream");
    writeCode(code);
}

void StoreStream::storeObject(const _eStorable& object, const _eHndl<_eInstblTypeInfo>& type) {
    _eFreeze freeze(this);
    const void* address = object.self();
    auto [index, end] = objectIndexes.lookup(address);
    if (index != end) {
        writeCode(CV_ANOTHERHNDL);
        storeInt(objectIndexes.at(index).second);
        return;
    }
    // Entered before the fields, so that a cycle back to this object ends in a reference.
    objectIndexes.put(address, nextObjectIndex++);
    declareType(type);
    writeCode(CV_HNDL);
    storeInt(typeIndexes.get(type));
    object.storeFields(*this);
    writeCode(CV_END);
}

void StoreStream::declareType(const _eHndl<_eInstblTypeInfo>& type) {
    _eFreeze freeze(this);
    if (type->getArgs().isEmpty()) {
        if (typeIndexes.containsKey(type)) return;
        writeCode(CV_DCL_STYPE);
        storeSystemString(type->typeName());
        typeIndexes.put(type, nextTypeIndex++);
        return;
    }
    declareTemplate(type->withoutArguments());
    const _eTypeArgs& args = type->getArgs();
    for (int i = 0; i < args.size(); ++i) declareType(_aInstantiable(args.get(i)));
    if (typeIndexes.containsKey(type)) return;
    writeCode(CV_DCL_INSTN);
    storeInt(templateIndexes.get(type->withoutArguments()));
    for (int i = 0; i < args.size(); ++i) {
        storeInt(typeIndexes.get(_aInstantiable(args.get(i))));
        storeBool(args.get(i)->isFrom());
        storeBool(args.get(i)->isRef());
    }
    typeIndexes.put(type, nextTypeIndex++);
}

void StoreStream::declareTemplate(const _eHndl<_eInstblTypeInfo>& type) {
    if (templateIndexes.containsKey(type)) return;
    _eTypeTableEntry entry = type->entry();
    writeCode(CV_DCL_TTYPE);
    storeSystemString(entry.name);
    storeInt(entry.parameterCount);
    for (int i = 0; i < entry.separators.size(); ++i) storeInt(entry.separators.at(i));
    templateIndexes.put(type, nextTemplateIndex++);
}

void StoreStream::storeString(const _eString& text) {
    _eFreeze freeze(this);
    std::int32_t size = text.size();
    storeCollection(size);
    _eSeqReader<wchar_t> reader(text);
    for (std::int32_t done = 0; done < size;) {
        std::int32_t run = size - done < longestRun ? size - done : longestRun;
        storeRepeat(CV_CHAR, run);
        for (std::int32_t i = 0; i < run; ++i) storeChar(reader.next());
        done += run;
    }
}

void StoreStream::storeSystemString(const _eString& text) {
    FileError::_eEnum error;
    stream.get()->writeInt(text.size(), 2, error);
    check(error, SerialErrorType::writeError, L"writing system-string to storage-stream");
    _eSeq<unsigned char> bytes;
    _eSeqReader<wchar_t> reader(text);
    for (int i = 0; i < text.size(); ++i) bytes.pushBack((unsigned char)(reader.next() & 0xFF));
    stream.get()->writeBytes(bytes, error);
    check(error, SerialErrorType::writeError, L"writing system-string to storage-stream");
}

bool FillStream::equalFields(const FillStream& other) const {
    return StorageStream::equalFields(other) && stream == other.stream && completeTypes == other.completeTypes &&
           templateTypes == other.templateTypes && pushedBack == other.pushedBack &&
           pushedBackCode == other.pushedBackCode && decoder == other.decoder;
}

std::int64_t FillStream::readPayload(int width, const wchar_t* failure) {
    FileError::_eEnum error;
    std::int64_t value = 0;
    stream.get()->readInt(value, width, error);
    check(error, SerialErrorType::readError, failure);
    return value;
}

std::int32_t FillStream::readCode() {
    _eFreeze freeze(this);
    for (;;) {
        if (pushedBack) {
            pushedBack = false;
            return pushedBackCode;
        }
        FileError::_eEnum error;
        unsigned char byte = 0;
        stream.get()->readByte(byte, error);
        check(error, SerialErrorType::readError, L"reading CV code from storage-stream");
        std::int32_t code = byte;
        if (code >= _eCVCodeCount) streamFailure(SerialErrorType::missingHeap, L"reading CV code from storage-stream");
        switch (code) {
            case CV_REP: {
                std::int64_t count = unsignedOf(readPayload(2, L"reading CV repeat-count from storage-stream"), 2);
                if (count < 1) streamFailure(SerialErrorType::readError, L"reading CV repeat-count from storage-stream");
                repeatCount = std::int32_t(count - 1);  // this call gives the first item
                stream.get()->readByte(byte, error);
                check(error, SerialErrorType::readError, L"reading CV repeat-code from storage-stream");
                repeatCode = byte;
                return repeatCode;
            }
            case CV_DCL_HEAP: readHeapDeclaration(); break;
            case CV_DCL_STYPE: completeTypes.pushBack(_eInstblTypeInfo::makeType(fillSystemString(), false, false)); break;
            case CV_DCL_TTYPE: readTemplateDeclaration(); break;
            case CV_DCL_INSTN: readInstantiationDeclaration(); break;
            default: return code;
        }
    }
}

std::int32_t FillStream::codeInRun() {
    if (repeatCount == 0) return readCode();
    --repeatCount;
    return repeatCode;
}

void FillStream::fillInt(std::int32_t& value) {
    _eFreeze freeze(this);
    std::int32_t code = readCode();
    if (code < CV_INT_0 || code > CV_INT_8) streamFailure(SerialErrorType::missingInstantiation, L"expected int");
    static constexpr int widths[] = {0, 1, 2, 4, 8};
    int width = widths[code - CV_INT_0];
    value = width == 0 ? 0 : std::int32_t(readPayload(width, L"reading int from storage-stream"));
}

void FillStream::fillBool(bool& value) {
    _eFreeze freeze(this);
    if (codeInRun() != CV_BOOL) streamFailure(SerialErrorType::missingInstantiation, L"expected bool");
    FileError::_eEnum error;
    unsigned char byte = 2;
    stream.get()->readByte(byte, error);
    if (error != FileError::success || byte > 1) streamFailure(SerialErrorType::missingInstantiation, L"expected bool");
    value = byte == 1;
}

template <class Transfer>
void FillStream::readValue(std::int32_t code, const wchar_t* expected, const wchar_t* failure, Transfer transfer) {
    _eFreeze freeze(this);
    if (codeInRun() != code) streamFailure(SerialErrorType::missingInstantiation, expected);
    FileError::_eEnum error;
    transfer(*stream.get(), error);
    check(error, SerialErrorType::readError, failure);
}

void FillStream::fillChar(wchar_t& value) {
    readValue(CV_CHAR, L"expected char", L"reading char from storage-stream",
              [&](_InputStream& in, FileError::_eEnum& error) {
                  // Before version 2 a character is one byte.
                  if (header->getVersion() >= 2) {
                      in.readChar(value, *decoder, error);
                      return;
                  }
                  unsigned char byte = 0;
                  in.readByte(byte, error);
                  value = byte;
              });
}

void FillStream::fillDouble(double& value) {
    readValue(CV_DOUBLE, L"expected real", L"reading real from storage-stream",
              [&](_InputStream& in, FileError::_eEnum& error) { in.readDouble(value, error); });
}

void FillStream::fillByte(unsigned char& value) {
    readValue(CV_BYTE, L"expected byte", L"reading byte from storage-stream",
              [&](_InputStream& in, FileError::_eEnum& error) { in.readByte(value, error); });
}

void FillStream::fillEnum(const _eString&, std::int32_t& value) {
    _eFreeze freeze(this);
    std::int32_t code = readCode();
    if (code < CV_ENUM_1 || code > CV_ENUM_4) streamFailure(SerialErrorType::missingInstantiation, L"expected enum");
    std::int32_t index;
    fillInt(index);
    completeType(index);
    int width = enumWidth(code);
    value = std::int32_t(unsignedOf(readPayload(width, L"reading enum from storage-stream"), width));
}

void FillStream::fillCollection(std::int32_t& size) {
    _eFreeze freeze(this);
    if (readCode() != CV_COLLECTION) streamFailure(SerialErrorType::missingInstantiation, L"expected a collection");
    fillInt(size);
}

void FillStream::fillString(_eString& text) {
    _eFreeze freeze(this);
    std::int32_t size;
    fillCollection(size);
    _eString read;
    for (std::int32_t i = 0; i < size; ++i) {
        wchar_t unit;
        fillChar(unit);
        read.pushBack(unit);
    }
    text = read;
}

_eString FillStream::fillSystemString() {
    FileError::_eEnum error;
    std::int64_t size = 0;
    stream.get()->readInt(size, 2, error);
    if (error != FileError::success || size < 0) streamFailure(SerialErrorType::missingType, L"invalid string length");
    _eSeq<unsigned char> bytes;
    stream.get()->readBytes(bytes, int(size), error);
    check(error, SerialErrorType::readError, L"reading system-string from storage-stream");
    _eString text;
    for (int i = 0; i < bytes.size(); ++i) text.pushBack(wchar_t(bytes.at(i)));
    return text;
}

_eHndl<_eInstblTypeInfo> FillStream::completeType(std::int32_t index) const {
    if (index < 0 || index >= completeTypes.size())
        streamFailure(SerialErrorType::missingType, L"complete-type index out of range");
    return completeTypes.at(index);
}

void FillStream::readHeapDeclaration() {
    std::int32_t last;
    fillInt(last);
    _eSeq<_eString> path;
    for (std::int32_t i = 0; i <= last; ++i) path.pushBack(fillSystemString());
    heaps.pushBack(_eHndl<_aHeapInfo>(new _aHeapInfo(path)));
}

void FillStream::readTemplateDeclaration() {
    _eString name = fillSystemString();
    std::int32_t parameterCount;
    fillInt(parameterCount);
    _eSeq<_eSeparatorId::_eEnum> separators;
    for (std::int32_t i = 1; i < parameterCount; ++i) {
        std::int32_t separator;
        fillInt(separator);
        separators.pushBack(_eSeparatorId::_eEnum(separator));
    }
    templateTypes.pushBack(
        _eHndl<_eInstblTypeInfo>(new _eInstblTypeInfo(name, parameterCount, separators, false, false)));
}

void FillStream::readInstantiationDeclaration() {
    std::int32_t index;
    fillInt(index);
    if (index < 0 || index >= templateTypes.size())
        streamFailure(SerialErrorType::missingType, L"invalid template type index");
    _eHndl<_eInstblTypeInfo> templateType = templateTypes.at(index);
    _eTypeArgs arguments;
    for (int i = 0, n = templateType->entry().parameterCount; i < n; ++i) {
        std::int32_t argument;
        bool from, ref;
        fillInt(argument);
        fillBool(from);
        fillBool(ref);
        _eHndl<_eInstblTypeInfo> type(static_cast<_eInstblTypeInfo*>(completeType(argument)->clone()));
        type->setFlags(from, ref);
        arguments.pushBack(type);
    }
    completeTypes.pushBack(templateType->instantiate(arguments));
}

void _aStoreValue(StoreStream& stream, std::int32_t value) { stream.storeInt(value); }
void _aStoreValue(StoreStream& stream, bool value) { stream.storeBool(value); }
void _aStoreValue(StoreStream& stream, wchar_t value) { stream.storeChar(value); }
void _aStoreValue(StoreStream& stream, double value) { stream.storeDouble(value); }
void _aStoreValue(StoreStream& stream, unsigned char value) { stream.storeByte(value); }
void _aStoreValue(StoreStream& stream, const _eString& value) { stream.storeString(value); }
void _aFillValue(FillStream& stream, std::int32_t& value) { stream.fillInt(value); }
void _aFillValue(FillStream& stream, bool& value) { stream.fillBool(value); }
void _aFillValue(FillStream& stream, wchar_t& value) { stream.fillChar(value); }
void _aFillValue(FillStream& stream, double& value) { stream.fillDouble(value); }
void _aFillValue(FillStream& stream, unsigned char& value) { stream.fillByte(value); }
void _aFillValue(FillStream& stream, _eString& value) { stream.fillString(value); }

void _aStoreEnum(StoreStream& stream, const wchar_t* storageName, std::int32_t value) {
    stream.storeEnum(storageName, value);
}

std::int32_t _aFillEnum(FillStream& stream, const wchar_t* storageName) {
    std::int32_t value = 0;
    stream.fillEnum(storageName, value);
    return value;
}

void _aStoreObject(StoreStream& stream, const _eStorable& object, const _eHndl<_eInstblTypeInfo>& type) {
    stream.storeObject(object, type);
}
