// Attributes, and the readings of multiplicities and initial values.
#include <algorithm>
#include <climits>
#include <cstdint>

#include "runtime/StringUtils.h"
#include "xmi/Render.h"
#include "xmi/XMLDictionary.h"

namespace {

// The value of a bound written in digits alone; -1 for anything else. A bound beyond the
// largest 32-bit number counts as that number.
std::int32_t boundValue(const _eString& text) {
    if (text.isEmpty()) return -1;
    std::int64_t value = 0;
    for (int i = 0, n = text.size(); i < n; ++i) {
        wchar_t c = text.get(i);
        if (c < L'0' || c > L'9') return -1;
        value = std::min<std::int64_t>(value * 10 + (c - L'0'), INT32_MAX);
    }
    return std::int32_t(value);
}

}  // namespace

_eHndl<TarvaneSections> FCAttributeElement::generateSections(const _eHndl<Context>& context) const {
    _eString name = nameOrUnknown(true);
    bool frozen = attributeOrSubElement(L"changeability", L"UML:StructuralFeature.changeability", context) ==
                  _eString(L"frozen");
    _eHndl<TarvaneOutput> declaration;
    _eHndl<TarvaneOutput> accessor;
    if (frozen) {
        declaration = tokens({L"const", name, L"^=", literalText(initialValue(context)), L";"});
        accessor = tokens({L"function", name, L";"});
    } else {
        declaration = tokens({L"var", name, L":"}) +
                      multiplicityType(L"UML:StructuralFeature.multiplicity", L"UML:StructuralFeature.type", false, context) +
                      tokens({L";"});
        accessor = tokens({L"selector", name, L";"});
    }
    return byVisibility(visibility(context), declaration, accessor);
}

_eHndl<TarvaneOutput> XMLElement::multiplicityType(const _eString& multiplicityElement, const _eString& typeElement,
                                                   bool isRef, const _eHndl<Context>& context) const {
    _eHndl<TarvaneOutput> type = typeOf(typeElement, context);
    ElementSeq ranges = getContent()->elementsAtPath(
        {multiplicityElement, L"UML:Multiplicity", L"UML:Multiplicity.range", L"UML:MultiplicityRange"});
    if (ranges.size() != 1) return type;
    const XMLElement& range = *ranges.get(0);
    _eString lowerText = XMLcontent::trimSpaces(range.attributeOrSubElement(L"lower", L"UML:MultiplicityRange.lower", context));
    _eString upperText = XMLcontent::trimSpaces(range.attributeOrSubElement(L"upper", L"UML:MultiplicityRange.upper", context));
    std::int32_t lower = boundValue(lowerText);
    std::int32_t upper = boundValue(upperText);
    _eHndl<TarvaneOutput> ref = isRef ? tokens({L"ref"}) : TarvaneOutput::empty();
    if (upper == 1 && lower == 0) return ref + type + tokens({L"||", L"void"});
    if (upper == 1) return ref + type;
    if (lower > 0)
        return tokens({L"those", L"x", L":", L"set", L"of"}) + ref + type + tokens({L":-", L"#", L"x", L">=", intToString(lower)});
    return tokens({L"set", L"of"}) + ref + type;
}

_eString XMLElement::initialValue(const _eHndl<Context>& context) const {
    ElementSeq found = getContent()->elementsAtPath({L"UML:Attribute.initialValue", L"UML:Expression"});
    if (found.size() != 1) return L"?";
    return found.get(0)->attributeOrSubElement(L"body", L"UML:Expression.body", context);
}

_eString XMLElement::literalText(const _eString& value) {
    int n = value.size();
    if (n == 0) return value;
    wchar_t last = value.get(n - 1);
    if ((last == L'L' || last == L'l') && isInteger(value.take(n - 1))) return value.take(n - 1);
    if (n >= 3 && value.get(0) == L'\'' && last == L'\'') return _eString(L"`") + value.take(n - 1).drop(1) + L"`";
    return value;
}
