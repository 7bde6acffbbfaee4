#include "runtime/UrelException.h"

#include "environment/PlatformText.h"

_aUrelExceptionWrapper::~_aUrelExceptionWrapper() = default;

const char* _aUrelExceptionWrapper::what() const noexcept {
    try {
        if (whatText.empty()) whatText = toPlatformText(exception->getMessage());
        return whatText.c_str();
    } catch (...) {
        return "storage stream failure";
    }
}

void streamFailure(SerialErrorType::_eEnum errorType, const _eString& message) {
    throw _aUrelExceptionWrapper(_eFrom<_eUrelException>(new _aStreamException(message, errorType)));
}
