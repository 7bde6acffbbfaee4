// `FileName`: a user's file name resolved to one canonical form, with its directory, name and
// extension kept apart. Everything that opens or reports a file goes through it.
#pragma once

#include "runtime/Class.h"
#include "runtime/Storable.h"

class Environment;

class MB_API FileName : public _eClass<FileName, _eStorable> {
public:
    static constexpr _aTypeSlot _aType{&_aModule4, 0};

    FileName() = default;
    // `fileName` against `defaultDirectory`; a non-empty `forcedExtension` replaces the name's own.
    FileName(const _eString& defaultDirectory, const _eString& fileName, const _eString& forcedExtension,
             const Environment* environment);
    FileName(const _eString& fileName, const Environment* environment);

    bool equalFields(const FileName& other) const {
        return directory == other.directory && name == other.name && extension == other.extension &&
               valid == other.valid;
    }
    // By directory, name and extension as strings; then by class.
    _eRank rank(const _eAnyBase* other) const override;

    _eString toString() const override { return fullPathText(); }

    void store(StoreStream& stream) const override { _aStoreObject(stream, *this, _aMyTypeInfo()); }
    void storeFields(StoreStream& stream) const override;
    void fill(FillStream& stream) override;

    // `name`, and "." and `extension` when there is one.
    _eString fileNameText() const;
    _eString fullPathText() const { return directory + fileNameText(); }
    const _eString& getDirectory() const { return directory; }
    const _eString& getName() const { return name; }
    const _eString& getExtension() const { return extension; }
    bool isValid() const { return valid; }

private:
    _eString directory;  // up to and including the last separator
    _eString name;       // the file part without its extension
    _eString extension;  // without the dot; may be empty
    bool valid = false;  // resolved, and `name` not empty
};
