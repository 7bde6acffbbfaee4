#include "environment/FileStats.h"

#include "runtime/StringUtils.h"

_eString FileStats::toString() const {
    _eString text = L"FileStats object represents a ";
    if (attributes.contains(FileAttribute::directory))
        text = text + L"directory";
    else
        text = text + L"file of size " + intToString(size) + L" bytes";
    text = text + L", Created: " + created->toString() + L", Last-modified: " + lastModified->toString() +
           L", Last-accessed: " + lastAccessed->toString() + L", With attributes: ";
    _eSeq<_eString> names;
    for (FileAttribute::_eEnum a : {FileAttribute::hidden, FileAttribute::system, FileAttribute::archive,
                                    FileAttribute::write, FileAttribute::read})
        if (attributes.contains(a)) names.pushBack(FileAttribute::_eWrapper::label(a));
    return text + join(names, L";");
}
