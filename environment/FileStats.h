// `FileStats`: what the file system says about one file or directory.
#pragma once

#include <cstdint>

#include "environment/EnvironmentEnums.h"
#include "environment/Time.h"
#include "runtime/Set.h"

class MB_API FileStats : public _eClass<FileStats, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule29, 9};

    FileStats(const _eHndl<Time>& created, const _eHndl<Time>& lastModified, const _eHndl<Time>& lastAccessed,
              const _eSet<FileAttribute::_eEnum>& attributes, std::int32_t size)
        : created(created), lastModified(lastModified), lastAccessed(lastAccessed), attributes(attributes),
          size(size) {}

    bool equalFields(const FileStats& other) const {
        return created == other.created && lastModified == other.lastModified &&
               lastAccessed == other.lastAccessed && attributes == other.attributes && size == other.size;
    }

    _eString toString() const override;

    const _eHndl<Time>& getCreated() const { return created; }
    const _eHndl<Time>& getLastModified() const { return lastModified; }
    const _eHndl<Time>& getLastAccessed() const { return lastAccessed; }
    const _eSet<FileAttribute::_eEnum>& getAttributes() const { return attributes; }
    std::int32_t getSize() const { return size; }

private:
    _eHndl<Time> created;                     // the status change time
    _eHndl<Time> lastModified;
    _eHndl<Time> lastAccessed;
    _eSet<FileAttribute::_eEnum> attributes;  // `directory`, `write`, `read` are the ones set
    std::int32_t size;                        // bytes; 0 for a directory
};
