#include "environment/FileName.h"

#include "environment/Environment.h"
#include "runtime/StorageStream.h"

FileName::FileName(const _eString& defaultDirectory, const _eString& fileName, const _eString& forcedExtension,
                   const Environment* environment) {
    if (fileName.isEmpty()) return;
    _eHndl<FilePath> path = environment->fullPath(defaultDirectory, fileName);
    if (path.isNull()) return;
    const _eString& file = path->getFile();
    int length = file.size();
    int dot = length;
    for (int i = length; i > 0; --i) {
        if (file.at(i - 1) == L'.') {
            dot = i - 1;
            break;
        }
    }
    directory = path->getDirectory();
    name = file.take(dot);
    if (!forcedExtension.isEmpty())
        extension = forcedExtension;
    else if (dot < length)
        extension = file.drop(dot + 1);
    valid = !name.isEmpty();
}

FileName::FileName(const _eString& fileName, const Environment* environment)
    : FileName(_eString(), fileName, _eString(), environment) {}

_eRank FileName::rank(const _eAnyBase* other) const {
    const auto* that = dynamic_cast<const FileName*>(other);
    if (that == nullptr) return defaultRank(other);
    for (auto [mine, theirs] : {std::pair{&directory, &that->directory}, std::pair{&name, &that->name},
                                std::pair{&extension, &that->extension}}) {
        _eRank r = rankStrings(*mine, *theirs);
        if (r != rankSame) return r;
    }
    return defaultRank(other);
}

_eString FileName::fileNameText() const {
    if (extension.isEmpty()) return name;
    return name + L"." + extension;
}

void FileName::storeFields(StoreStream& stream) const {
    for (const _eString* text : {&directory, &name, &extension}) stream.storeString(*text);
    stream.storeBool(valid);
}

void FileName::fill(FillStream& stream) {
    _eFreeze freeze(this);
    for (_eString* text : {&directory, &name, &extension}) stream.fillString(*text);
    stream.fillBool(valid);
}
