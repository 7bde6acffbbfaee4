// The storage stream: values written to a byte stream as a flat run of items, each led by a
// one-byte code, with declarations of types between them. The library holds the format; the
// host supplies the byte streams and character coders.
#pragma once

#include <cstdint>

#include "environment/EnvironmentEnums.h"
#include "runtime/Map.h"
#include "runtime/ModuleDescriptor.h"
#include "runtime/Storable.h"

// The item codes: one byte each.
enum _eCVCode : int {
    CV_RSVD, CV_SYSSTR, CV_REP, CV_NULL, CV_END, CV_HNDL, CV_ANOTHERHNDL, CV_SMALL, CV_REF, CV_ANOTHERREF,
    CV_UNION, CV_COLLECTION, CV_ENUM_1, CV_ENUM_2, CV_ENUM_4, CV_INT_0, CV_INT_1, CV_INT_2, CV_INT_4, CV_INT_8,
    CV_INT_L, CV_CHAR, CV_BOOL, CV_REAL, CV_DOUBLE, CV_DCL_HEAP, CV_DCL_STYPE, CV_DCL_TTYPE, CV_DCL_INSTN, CV_BYTE
};
inline constexpr int _eCVCodeCount = 30;
MB_API extern const wchar_t* const _eCVCodeNames[_eCVCodeCount];

// The coders of characters that a byte stream uses; the host's streams know their kinds.
class MB_API CharEncoderDecoder : public _eAbstractClass<CharEncoderDecoder, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule37, 0};
};
class MB_API CharEncoder : public _eAbstractClass<CharEncoder, CharEncoderDecoder> {
public:
    static constexpr _aTypeSlot _aType{&_aModule37, 1};
};
class MB_API CharDecoder : public _eAbstractClass<CharDecoder, CharEncoderDecoder> {
public:
    static constexpr _aTypeSlot _aType{&_aModule37, 2};
};

// What a byte stream must do. Each transfer reports through `error`, `success` when all went
// well. A number written with a width comes back unchanged when read with that width.
class MB_API _OutputStream : public _eAbstractClass<_OutputStream, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule35, 2};

    virtual void writeDouble(double value, FileError::_eEnum& error) = 0;
    virtual void writeChar(wchar_t unit, const CharEncoder& encoder, FileError::_eEnum& error) = 0;
    // `width` is 1, 2, 4 or 8 bytes.
    virtual void writeInt(std::int64_t value, int width, FileError::_eEnum& error) = 0;
    virtual void writeBytes(const _eSeq<unsigned char>& bytes, FileError::_eEnum& error) = 0;
    virtual void writeByte(unsigned char value, FileError::_eEnum& error) = 0;
};

class MB_API _InputStream : public _eAbstractClass<_InputStream, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule35, 1};

    virtual void readDouble(double& value, FileError::_eEnum& error) = 0;
    virtual void readChar(wchar_t& unit, const CharDecoder& decoder, FileError::_eEnum& error) = 0;
    virtual void readInt(std::int64_t& value, int width, FileError::_eEnum& error) = 0;
    virtual void readBytes(_eSeq<unsigned char>& bytes, int count, FileError::_eEnum& error) = 0;
    virtual void readByte(unsigned char& value, FileError::_eEnum& error) = 0;
};

// The head of a stream; readers of characters look at its version.
class MB_API StreamHeader : public _eClass<StreamHeader, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule36, 0};

    explicit StreamHeader(std::int32_t version) : version(version) {}
    bool equalFields(const StreamHeader& other) const { return version == other.version; }
    std::int32_t getVersion() const { return version; }

private:
    std::int32_t version;
};

// What writing and reading share: the heaps declared so far and the run of items under way.
class MB_API StorageStream : public _eAbstractClass<StorageStream, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule32, 0};

    explicit StorageStream(_eHndl<StreamHeader> header) : header(std::move(header)) {}

    bool equalFields(const StorageStream& other) const {
        return repeatCode == other.repeatCode && repeatCount == other.repeatCount && heaps == other.heaps &&
               header == other.header;
    }

    const _eSeq<_eHndl<_aHeapInfo>>& getHeaps() const { return heaps; }
    int getRepeatCount() const { return repeatCount; }

protected:
    _eSeq<_eHndl<_aHeapInfo>> heaps;
    std::int32_t repeatCode = 0;
    std::int32_t repeatCount = 0;  // items of the run still to come
    _eHndl<StreamHeader> header;
};

class MB_API StoreStream : public _eClass<StoreStream, StorageStream> {
public:
    static constexpr _aTypeSlot _aType{&_aModule32, 1};

    StoreStream(_eFrom<_OutputStream> stream, _eHndl<StreamHeader> header, _eFrom<CharEncoder> encoder)
        : _eClass(std::move(header)), stream(std::move(stream)), encoder(std::move(encoder)) {}

    bool equalFields(const StoreStream& other) const;

    void storeInt(std::int32_t value);
    void storeBool(bool value);
    void storeChar(wchar_t value);
    void storeDouble(double value);
    void storeByte(unsigned char value);
    void storeEnum(const _eString& typeName, std::int32_t value);
    void storeCollection(std::int32_t size);
    // The next `count` items of the code write their payloads alone; nothing for one or none.
    void storeRepeat(std::int32_t code, std::int32_t count);
    // A shared object goes once; later mentions refer to it by its index.
    void storeObject(const _eStorable& object, const _eHndl<_eInstblTypeInfo>& type);
    // What a reader must know of `type`, written once per stream.
    void declareType(const _eHndl<_eInstblTypeInfo>& type);
    // A string as a field: its size, then its units in runs.
    void storeString(const _eString& text);
    void storeSystemString(const _eString& text);

private:
    void writeCode(std::int32_t code);
    void writeCodeUnlessInRun(std::int32_t code);
    // A value of a code that may stand in a run: the code unless in a run, then one transfer.
    template <class Transfer>
    void writeValue(std::int32_t code, const wchar_t* failure, Transfer transfer);
    void writePayload(std::int64_t value, int width, const wchar_t* failure);
    void declareTemplate(const _eHndl<_eInstblTypeInfo>& type);

    _eFrom<_OutputStream> stream;
    _eMap<_eHndl<_eInstblTypeInfo>, int> typeIndexes;      // complete types declared so far
    _eMap<_eHndl<_eInstblTypeInfo>, int> templateIndexes;  // template types declared so far
    _eMap<const void*, int> objectIndexes;                 // objects written so far
    std::int32_t nextTypeIndex = 0;
    std::int32_t nextTemplateIndex = 0;
    std::int32_t nextObjectIndex = 0;
    _eFrom<CharEncoder> encoder;
};

class MB_API FillStream : public _eClass<FillStream, StorageStream> {
public:
    static constexpr _aTypeSlot _aType{&_aModule32, 2};

    FillStream(_eFrom<_InputStream> stream, _eHndl<StreamHeader> header, _eFrom<CharDecoder> decoder)
        : _eClass(std::move(header)), stream(std::move(stream)), decoder(std::move(decoder)) {}

    bool equalFields(const FillStream& other) const;

    // The next item's code; declarations and the head of a run are taken on the way.
    std::int32_t readCode();
    void fillInt(std::int32_t& value);
    void fillBool(bool& value);
    void fillChar(wchar_t& value);
    void fillDouble(double& value);
    void fillByte(unsigned char& value);
    void fillEnum(const _eString& typeName, std::int32_t& value);
    void fillCollection(std::int32_t& size);
    void fillString(_eString& text);
    _eString fillSystemString();

    const _eSeq<_eHndl<_eInstblTypeInfo>>& getCompleteTypes() const { return completeTypes; }
    const _eSeq<_eHndl<_eInstblTypeInfo>>& getTemplateTypes() const { return templateTypes; }

private:
    std::int32_t codeInRun();
    // A value of a code that may stand in a run: the code must be `code`, then one transfer.
    template <class Transfer>
    void readValue(std::int32_t code, const wchar_t* expected, const wchar_t* failure, Transfer transfer);
    std::int64_t readPayload(int width, const wchar_t* failure);
    _eHndl<_eInstblTypeInfo> completeType(std::int32_t index) const;
    void readHeapDeclaration();
    void readTemplateDeclaration();
    void readInstantiationDeclaration();

    _eFrom<_InputStream> stream;
    _eSeq<_eHndl<_eInstblTypeInfo>> completeTypes;  // by their index in the stream
    _eSeq<_eHndl<_eInstblTypeInfo>> templateTypes;
    bool pushedBack = false;
    std::int32_t pushedBackCode = 0;
    _eFrom<CharDecoder> decoder;
};
