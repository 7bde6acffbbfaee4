#include "xmi/ModelNames.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"

namespace {

bool isWordUnit(wchar_t c) {
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || (c >= L'0' && c <= L'9') || c == L'_' || c >= 128;
}

// Nothing but symbols: an operator's name.
bool isSymbol(const _eString& text) {
    if (text.isEmpty()) return false;
    for (int i = 0, n = text.size(); i < n; ++i)
        if (isWordUnit(text.get(i)) || text.get(i) == L' ') return false;
    return true;
}

// The names of the packages at the end of `path`, at most `depth` of them, each an identifier,
// before `name`, joined by "_".
_eString qualified(const std::vector<_eString>& path, std::size_t depth, const _eString& name) {
    _eString text = name;
    for (std::size_t i = 0; i < depth && i < path.size(); ++i) text = path[path.size() - 1 - i] + L"_" + text;
    return text;
}

}  // namespace

_eString ModelNames::identifier(const _eString& text) {
    if (text.isEmpty() || textIs(text, L"?")) return L"?";
    std::wstring scratch;
    std::wstring_view units = unitsOf(text, scratch);
    bool leadingDigit = units[0] >= L'0' && units[0] <= L'9';
    if (!leadingDigit && std::all_of(units.begin(), units.end(), isWordUnit)) return text;
    std::wstring out = leadingDigit ? L"_" : L"";
    for (wchar_t unit : units) out.push_back(isWordUnit(unit) ? unit : L'_');
    return _eString(std::wstring_view(out));
}

// Each class by its name as an identifier; where classes share one, each by the fewest of its
// innermost packages that tell them all apart.
ModelNames::ModelNames(const ModelClasses& found, const ModelReader& reader) {
    struct Named {
        const XMLElement* element;
        _eString written;
        _eString base;
        std::vector<_eString> path;
    };
    std::vector<Named> all;
    KeyMap<std::vector<std::size_t>> byBase;
    for (const FoundClass& each : found.inOrder) {
        Named named{each.element.get(), each.name, {}, {}};
        named.base = identifier(named.written);
        for (const NameRecord& package : each.packagePath)
            named.path.push_back(identifier(ClassRenderer::nameText(package, false)));
        byBase[DictionaryKey(named.base)].push_back(all.size());
        all.push_back(named);
        inOrder.push_back(each.element.get());
    }
    std::vector<_eString> given(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) given[i] = all[i].base;
    for (const auto& [base, members] : byBase) {
        if (members.size() < 2) continue;
        std::size_t deepest = 0;
        for (std::size_t member : members) deepest = std::max(deepest, all[member].path.size());
        for (std::size_t depth = 1; depth <= deepest; ++depth) {
            std::map<std::wstring, int> seen;
            for (std::size_t member : members) ++seen[toWString(qualified(all[member].path, depth, all[member].base))];
            bool distinct = seen.size() == members.size();
            if (!distinct && depth < deepest) continue;
            for (std::size_t member : members) given[member] = qualified(all[member].path, depth, all[member].base);
            break;
        }
    }
    std::set<std::wstring> reported;
    for (std::size_t i = 0; i < all.size(); ++i) {
        byElement.emplace(all[i].element, given[i]);
        DictionaryKey id = reader.elementIdKey(*all[i].element);
        if (!id.isEmpty()) byId.emplace(std::move(id), given[i]);
        if (!(given[i] == all[i].written) && reported.insert(toWString(all[i].written + L"\n" + given[i])).second)
            changes.push_back({all[i].written, given[i]});
    }
}

_eString ModelNames::className(const XMLElement& element) const {
    auto at = byElement.find(&element);
    return at == byElement.end() ? _eString(L"?") : at->second;
}

ClassMap ModelNames::classMap() const {
    ClassMap map;
    for (const XMLElement* element : inOrder) {
        _eString name = className(*element);
        if (!map.containsKey(name)) map.put(name, const_cast<XMLElement*>(element));
    }
    return map;
}

NameRecord ModelNames::memberName(const NameRecord& name) const {
    if (!ClassRenderer::hasName(name)) return name;
    return NameRecord::plain(identifier(ClassRenderer::nameText(name, false)));
}

// An operator's symbol stays, also behind the word "operator" ("operator<<" is the operator
// "<<"); any other name becomes an identifier.
NameRecord ModelNames::operationName(const NameRecord& name) const {
    if (!ClassRenderer::hasName(name)) return name;
    _eString text = ClassRenderer::nameText(name, false);
    if (isSymbol(text)) return name;
    _eString word = L"operator";
    if (text.startsWith(word)) {
        _eString symbol = trimSpaces(text.drop(word.size()));
        if (isSymbol(symbol)) return NameRecord::plain(symbol);
    }
    return NameRecord::plain(identifier(text));
}

TypeRecord ModelNames::type(TypeRecord type) const {
    if (!type.resolved()) return type;
    auto at = type.id.isEmpty() ? byId.end() : byId.find(type.id);
    if (at != byId.end())
        type.name = NameRecord::plain(at->second);
    else if (ClassRenderer::hasName(type.name))
        type.name = NameRecord::plain(identifier(ClassRenderer::nameText(type.name, false)));
    return type;
}

ClassRecord ModelNames::apply(ClassRecord record, const XMLElement& element) const {
    record.name = NameRecord::plain(className(element));
    for (GeneralizationRecord& parent : record.parents) parent.parent = type(std::move(parent.parent));
    for (GeneralizationRecord& realization : record.realizations)
        realization.parent = type(std::move(realization.parent));
    for (LiteralRecord& literal : record.literals) literal.name = memberName(literal.name);
    for (FeatureRecord& feature : record.features) {
        if (auto* attribute = std::get_if<AttributeRecord>(&feature)) {
            attribute->name = memberName(attribute->name);
            attribute->type = type(std::move(attribute->type));
            continue;
        }
        auto& operation = std::get<OperationRecord>(feature);
        operation.name = operationName(operation.name);
        for (ParameterRecord& parameter : operation.parameters) {
            parameter.name = memberName(parameter.name);
            parameter.type = type(std::move(parameter.type));
        }
    }
    for (AssociationRecord& association : record.associations)
        for (AssociationEndRecord& end : association.ends) {
            end.name = memberName(end.name);
            end.type = type(std::move(end.type));
            end.roleType = type(std::move(end.roleType));
        }
    return record;
}

std::vector<ModelNames::Change> ModelNames::memberChanges(const ClassRecord& written, const ClassRecord& given) {
    std::vector<Change> out;
    auto compare = [&](const NameRecord& before, const NameRecord& after) {
        if (!ClassRenderer::hasName(before)) return;
        _eString was = ClassRenderer::nameText(before, false);
        _eString is = ClassRenderer::nameText(after, false);
        if (!(was == is)) out.push_back({was, is});
    };
    for (std::size_t i = 0; i < written.features.size() && i < given.features.size(); ++i) {
        if (const auto* attribute = std::get_if<AttributeRecord>(&written.features[i])) {
            compare(attribute->name, std::get<AttributeRecord>(given.features[i]).name);
            continue;
        }
        const auto& before = std::get<OperationRecord>(written.features[i]);
        const auto& after = std::get<OperationRecord>(given.features[i]);
        compare(before.name, after.name);
        for (std::size_t k = 0; k < before.parameters.size(); ++k) compare(before.parameters[k].name, after.parameters[k].name);
    }
    for (std::size_t i = 0; i < written.literals.size() && i < given.literals.size(); ++i)
        compare(written.literals[i].name, given.literals[i].name);
    for (std::size_t i = 0; i < written.associations.size(); ++i)
        for (std::size_t k = 0; k < written.associations[i].ends.size(); ++k)
            compare(written.associations[i].ends[k].name, given.associations[i].ends[k].name);
    return out;
}
