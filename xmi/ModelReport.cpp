#include "xmi/ModelReport.h"

#include <variant>

#include "runtime/StringUtils.h"
#include "xmi/XmiHelpers.h"

namespace {

// The kinds of model elements that no declaration is made for, each by its metaclasses.
struct LeftOutKind {
    const wchar_t* title;
    std::vector<const wchar_t*> metaclasses;
};

const std::vector<LeftOutKind>& leftOutKinds() {
    static const std::vector<LeftOutKind> kinds = {
        {L"enumerations not generated", {L"Enumeration"}},
        {L"interfaces not generated", {L"Interface"}},
        {L"data types not generated", {L"DataType", L"PrimitiveType"}},
        {L"association classes not generated", {L"AssociationClass"}},
        {L"dependencies not generated",
         {L"Dependency", L"Abstraction", L"Usage", L"Realization", L"InterfaceRealization", L"Permission"}},
        {L"constraints not generated", {L"Constraint"}},
        {L"comments not generated", {L"Comment"}},
        {L"stereotypes not generated", {L"Stereotype"}},
        {L"template parameters not generated", {L"TemplateParameter", L"ClassifierTemplateParameter"}},
    };
    return kinds;
}

constexpr std::size_t firstItems = 5;

}  // namespace

void ModelReport::addCarried(const ClassRecord& record, std::unordered_set<std::wstring>& carried) {
    auto add = [&](const _eString& id) {
        if (!id.isEmpty()) carried.insert(toWString(id));
    };
    auto addNotes = [&](const NotesRecord& notes) {
        for (const _eString& id : notes.commentIds) add(id);
        for (const ConstraintRecord& constraint : notes.constraints) add(constraint.id);
    };
    add(record.id);
    addNotes(record.notes);
    for (const GeneralizationRecord& realization : record.realizations) add(realization.id);
    for (const LiteralRecord& literal : record.literals) addNotes(literal.notes);
    for (const FeatureRecord& feature : record.features)
        std::visit([&](const auto& member) { addNotes(member.notes); }, feature);
}

std::vector<ReportKind> ModelReport::elementsLeftOut(const XMLElement& root, const ModelReader& reader,
                                                     const std::unordered_set<std::wstring>& carried) {
    std::vector<ReportKind> kinds;
    StringMap<std::size_t> byMetaclass;
    for (const LeftOutKind& kind : leftOutKinds()) {
        for (const wchar_t* metaclass : kind.metaclasses) byMetaclass.emplace(_eString(metaclass), kinds.size());
        kinds.push_back({kind.title, {}});
    }
    walkTree(
        root,
        [&](const XMLElement& element) {
            bool descend = true;
            _eString metaclass = reader.definedKind(element, descend);
            auto at = metaclass.isEmpty() ? byMetaclass.end() : byMetaclass.find(metaclass);
            if (at != byMetaclass.end() && (carried.empty() || !carried.count(toWString(reader.elementId(element))))) {
                NameRecord name = reader.readName(element);
                kinds[at->second].items.push_back(
                    name.form == NameRecord::attribute && !trimSpaces(name.text).isEmpty() ? name.text : _eString(L"?"));
            }
            return descend ? WalkChildren(*element.getContent()) : WalkChildren();
        },
        [](const XMLElement&) {});
    return kinds;
}

_eSeq<_eString> ModelReport::lines(const std::vector<ReportKind>& kinds, bool everyItem) {
    _eSeq<_eString> out;
    for (const ReportKind& kind : kinds) {
        if (kind.items.empty()) continue;
        _eString line = _eString(L"Left out: ") + intToString(std::int32_t(kind.items.size())) + L" " +
                        _eString(kind.title.c_str()) + L": ";
        std::size_t shown = everyItem ? kind.items.size() : std::min(kind.items.size(), firstItems);
        for (std::size_t i = 0; i < shown; ++i) line = line + (i > 0 ? L", " : L"") + kind.items[i];
        if (shown < kind.items.size())
            line = line + L", and " + intToString(std::int32_t(kind.items.size() - shown)) + L" more";
        out.pushBack(line);
    }
    return out;
}
