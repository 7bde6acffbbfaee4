// `OsInfo`: the operating system and its version.
#pragma once

#include <cstdint>

#include "environment/EnvironmentEnums.h"
#include "runtime/Class.h"
#include "runtime/Storable.h"

class MB_API OsInfo : public _eClass<OsInfo, _eStorable> {
public:
    static constexpr _aTypeSlot _aType{&_aModule29, 6};

    OsInfo() = default;
    OsInfo(OsType::_eEnum osType, std::int32_t majorVersion, std::int32_t minorVersion,
           std::int32_t servicePackMajor, std::int32_t servicePackMinor)
        : osType(osType), majorVersion(majorVersion), minorVersion(minorVersion),
          servicePackMajor(servicePackMajor), servicePackMinor(servicePackMinor) {}

    bool equalFields(const OsInfo& other) const {
        return osType == other.osType && majorVersion == other.majorVersion &&
               minorVersion == other.minorVersion && servicePackMajor == other.servicePackMajor &&
               servicePackMinor == other.servicePackMinor;
    }

    // "linux 6.1 SP0.0"
    _eString toString() const override {
        return OsType::_eWrapper::label(osType) + L" " + intToString(majorVersion) + L"." +
               intToString(minorVersion) + L" SP" + intToString(servicePackMajor) + L"." +
               intToString(servicePackMinor);
    }

    void store(StoreStream& stream) const override { _aStoreObject(stream, *this, _aMyTypeInfo()); }
    void storeFields(StoreStream& stream) const override {
        _aStoreEnum(stream, OsType::storageName, osType);
        for (std::int32_t number : {majorVersion, minorVersion, servicePackMajor, servicePackMinor})
            _aStoreValue(stream, number);
    }
    void fill(FillStream& stream) override {
        _eFreeze freeze(this);
        osType = OsType::_eEnum(_aFillEnum(stream, OsType::storageName));
        for (std::int32_t* number : {&majorVersion, &minorVersion, &servicePackMajor, &servicePackMinor})
            _aFillValue(stream, *number);
    }

private:
    OsType::_eEnum osType = OsType::unknown;
    std::int32_t majorVersion = 0;
    std::int32_t minorVersion = 0;
    std::int32_t servicePackMajor = 0;
    std::int32_t servicePackMinor = 0;
};
