#include "runtime/UrelException.h"

_aUrelExceptionWrapper::~_aUrelExceptionWrapper() = default;

void streamFailure(SerialErrorType::_eEnum errorType, const _eString& message) {
    throw _aUrelExceptionWrapper(_eFrom<_eUrelException>(new _aStreamException(message, errorType)));
}
