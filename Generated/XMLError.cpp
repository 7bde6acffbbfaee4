#include "Generated/XMLError.h"

#include <algorithm>
#include <iterator>

_eRank Error::rank(const _eAnyBase* other) const {
    const auto* that = dynamic_cast<const Error*>(other);
    if (that == nullptr || that == this) return defaultRank(other);
    _eRank byLocation = location->rank(that->location.get());
    return byLocation != rankSame ? byLocation : defaultRank(other);
}

_eString Error::fillTemplate(const _eString& messageTemplate) const {
    _eSeq<int> marks;
    for (int i = 0, n = messageTemplate.size(); i < n; ++i)
        if (messageTemplate.at(i) == L'$') marks.pushBack(i);
    marks.pushBack(messageTemplate.size());
    _eString result = messageTemplate.take(marks.at(0));
    // More arguments than placeholders: the surplus has nowhere to go and is left out.
    int n = std::min(arguments.size(), marks.size() - 1);
    for (int i = 0; i < n; ++i) {
        int from = marks.at(i) + 1;
        int to = marks.at(i + 1);
        result = result + arguments.at(i) + messageTemplate.take(to).drop(from);
    }
    return result;
}

_eString Error::formatMessage(bool shortFileNames, const _eString& message) const {
    return location->text(shortFileNames) + L": " + XMLError::caption(severity()) + L"! " + message;
}

_eString XMLError::text(bool shortFileNames) const {
    return formatMessage(shortFileNames, fillTemplate(messageTable().get(kind)->getMessageTemplate()) + L".");
}

ErrorSeverity::_eEnum XMLError::severity() const { return messageTable().get(kind)->getSeverity(); }

const _eMap<XMLErrorType::_eEnum, _eHndl<ErrorInfo>>& XMLError::messageTable() {
    static const _eMap<XMLErrorType::_eEnum, _eHndl<ErrorInfo>> table = [] {
        struct Row {
            XMLErrorType::_eEnum kind;
            ErrorSeverity::_eEnum severity;
            const wchar_t* messageTemplate;
        };
        const Row rows[] = {
            {XMLErrorType::fileOpen, ErrorSeverity::fatal, L"Unable to open file '$' for '$' access"},
            {XMLErrorType::fileClose, ErrorSeverity::warning, L"Failed to close file '$'"},
            {XMLErrorType::fileRead, ErrorSeverity::fatal, L"Read from file '$' failed"},
            {XMLErrorType::fileWrite, ErrorSeverity::fatal, L"Write to file '$' failed (file may be read-only)"},
            {XMLErrorType::fileTell, ErrorSeverity::fatal, L"Unable to obtain size of file '$'"},
            {XMLErrorType::fileName, ErrorSeverity::fatal, L"Unable to create FileName instance for file '$'"},
            {XMLErrorType::tagMismatch, ErrorSeverity::warning,
             L"End tag name '$' does not match start tag name '$' at $"},
            {XMLErrorType::illegalNonterminalAction, ErrorSeverity::fatal,
             L"Illegal nonterminal action '$' in state '$'"},
            {XMLErrorType::unexpectedToken, ErrorSeverity::fatal, L"Syntax error at '$'"},
            {XMLErrorType::notXMI, ErrorSeverity::fatal, L"Not an XMI document"},
            {XMLErrorType::noXMIcontent, ErrorSeverity::fatal, L"No XMI content element"},
            {XMLErrorType::duplicateAttribute, ErrorSeverity::warning,
             L"Element has multiple definitions of attribute '$'"},
        };
        static_assert(std::size(rows) == std::size_t(XMLErrorType::count), "one row per kind");
        _eMap<XMLErrorType::_eEnum, _eHndl<ErrorInfo>> map;
        for (const Row& row : rows) map.put(row.kind, _eHndl<ErrorInfo>(new ErrorInfo(row.severity, row.messageTemplate)));
        return map;
    }();
    return table;
}

_eString XMLError::caption(ErrorSeverity::_eEnum severity) {
    static const wchar_t* const captions[] = {L"Information", L"Warning", L"Error", L"Fatal error"};
    static_assert(std::size(captions) == std::size_t(ErrorSeverity::count), "one caption per severity");
    return captions[severity];
}

void addError(XMLErrors& errors, const _eHndl<Location>& where, XMLErrorType::_eEnum kind,
              const _eSeq<_eString>& arguments) {
    errors.add(_eHndl<XMLError>(new XMLError(where, kind, arguments)));
}
