#include "xmi/Xmi2Search.h"

#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"
#include "xmi/XMLDictionary.h"
#include "xml/XMLNames.h"

namespace {

int colonAt(const _eString& name) {
    for (int i = 0, n = name.size(); i < n; ++i)
        if (name.get(i) == L':') return i;
    return -1;
}

// "uml" of "uml:Class"; empty for a name without a prefix.
_eString prefixOf(const _eString& name) {
    int at = colonAt(name);
    return at < 0 ? _eString() : name.take(at);
}

// "Class" of "uml:Class".
_eString localOf(const _eString& name) { return name.drop(colonAt(name) + 1); }

_eString prefix(const _eString& name) { return XMLNames::derived<prefixOf>(name); }
_eString local(const _eString& name) { return XMLNames::derived<localOf>(name); }

// The words of a list of ids, split at white space.
_eSeq<_eString> words(const _eString& text) {
    _eSeq<_eString> out;
    _eString word;
    for (int i = 0, n = text.size(); i <= n; ++i) {
        wchar_t c = i < n ? text.get(i) : L' ';
        if (c != L' ' && c != L'\t' && c != L'\r' && c != L'\n') {
            word.pushBack(c);
        } else if (!word.isEmpty()) {
            out.pushBack(word);
            word = {};
        }
    }
    return out;
}

// A namespace of XMI 2: "http://schema.omg.org/spec/XMI/2.1", "http://www.omg.org/spec/XMI/20131001".
bool isXmiNamespace(const std::wstring& uri) { return uri.find(L"/XMI/") != std::wstring::npos; }

// A namespace of the UML metamodel: ".../UML" or ".../UML/VERSION"
// ("http://www.eclipse.org/uml2/5.0.0/UML", "http://www.omg.org/spec/UML/20131001"), but not
// a profile below it (".../UML/20131001/StandardProfile").
bool isUmlNamespace(const std::wstring& uri) {
    for (std::size_t at = uri.find(L"/UML"); at != std::wstring::npos; at = uri.find(L"/UML", at + 1)) {
        std::size_t rest = at + 4;
        if (rest == uri.size()) return true;
        if (uri[rest] == L'/' && uri.find(L'/', rest + 1) == std::wstring::npos && rest + 1 < uri.size()) return true;
    }
    return false;
}

// The standard primitive types of UML as the names of the language's own.
_eString libraryTypeName(const _eString& name) {
    if (textIs(name, L"Integer")) return L"int";
    if (textIs(name, L"Boolean")) return L"bool";
    if (textIs(name, L"Real")) return L"real";
    return name;
}

// A type in a library outside the document: named by the fragment of its "href".
TypeRecord libraryType(const _eString& href) {
    int hash = -1;
    for (int i = 0, n = href.size(); i < n; ++i)
        if (href.get(i) == L'#') hash = i;
    TypeRecord record;
    record.kind = TypeRecord::named;
    record.name.text = libraryTypeName(href.drop(hash + 1));
    record.name.given = true;
    return record;
}

}  // namespace

std::shared_ptr<const Xmi2Search> Xmi2Search::recognise(const XMLElement& root) {
    Names xmiPrefixes;
    Names umlPrefixes;
    const AttributeMap& attributes = root.getAttributes();
    for (int i = 0, n = attributes.size(); i < n; ++i) {
        const _eString& name = attributes.at(i).first;
        _eString bound;
        if (name == _eString(L"xmlns"))
            bound = {};
        else if (textIs(prefix(name), L"xmlns"))
            bound = local(name);
        else
            continue;
        std::wstring uri = toWString(root.attributeText(name, Context::shared()));
        if (isXmiNamespace(uri)) xmiPrefixes.add(bound);
        if (isUmlNamespace(uri)) umlPrefixes.add(bound);
    }
    _eString rootPrefix = prefix(root.getName());
    if (textIs(local(root.getName()), L"XMI") && xmiPrefixes.contains(rootPrefix))
        return std::make_shared<const Xmi2Search>(root, rootPrefix, umlPrefixes);
    if (!umlPrefixes.contains(rootPrefix)) return nullptr;
    for (int i = 0, n = xmiPrefixes.size(); i < n; ++i)
        if (root.hasAttribute(xmiPrefixes.at(i) + L":version"))
            return std::make_shared<const Xmi2Search>(root, xmiPrefixes.at(i), umlPrefixes);
    return nullptr;
}

Xmi2Search::Xmi2Search(const XMLElement& root, const _eString& xmiPrefix, const Names& umlPrefixes)
    : idKey(xmiPrefix + L":id"),
      idrefKey(xmiPrefix + L":idref"),
      typeKey(xmiPrefix + L":type"),
      umlPrefixes(umlPrefixes),
      root(const_cast<XMLElement*>(&root)) {
    // Tags without a prefix are the properties of the elements that hold them.
    this->umlPrefixes.add(_eString());
    findClasses();
}

// Depth first with a stack of its own, each element done after its children. An element of
// another namespace, and every element within it, is never a class nor holds one: the walk
// passes them over.
void Xmi2Search::findClasses() {
    struct Frame {
        const XMLElement* element;
        ElementSeq children;
        int next;
        _eString kind;       // its metaclass
        ElementSeq holding;  // the children done that are or hold classes
    };
    std::vector<Frame> frames;
    // The root, "xmi:XMI" or a model, holds the document.
    frames.push_back({root.get(), root->getContent()->childElements(), 0, {}, {}});
    while (true) {
        Frame& top = frames.back();
        if (top.next < top.children.size()) {
            const XMLElement* child = top.children.get(top.next++).get();
            bool uml = false;
            _eString kind = classify(*child, uml);
            if (uml) frames.push_back({child, child->getContent()->childElements(), 0, kind, {}});
            continue;
        }
        const XMLElement& element = *top.element;
        bool holds = !top.holding.isEmpty();
        if (holds) holding[&element] = top.holding;
        const _eString& kind = top.kind;
        bool isClassElement = textIs(kind, L"Class") && element.hasAttribute(idKey) && !element.hasAttribute(idrefKey) &&
                              !element.hasAttribute(L"href");
        if (isClassElement) classes.insert(&element);
        if (textIs(kind, L"Association")) associationElements.push_back(&element);
        frames.pop_back();
        if (frames.empty()) break;
        if (holds || isClassElement) frames.back().holding.pushBack(const_cast<XMLElement*>(&element));
    }
}

// Every element's id, foreign ones too; then the associations by their ends.
const Xmi2Search::Lookups& Xmi2Search::lookups() const {
    std::call_once(lookupsBuilt, [this] {
        auto tables = std::make_unique<Lookups>();
        std::unordered_set<std::wstring> duplicates;
        std::vector<ElementSeq> pending{ElementSeq(root)};
        while (!pending.empty()) {
            ElementSeq elements = pending.back();
            pending.pop_back();
            for (int i = 0, n = elements.size(); i < n; ++i) {
                const XMLElement& element = *elements.get(i);
                if (element.hasAttribute(idKey)) {
                    std::wstring id = toWString(element.attributeText(idKey, Context::shared()));
                    if (!tables->ids.emplace(id, elements.get(i)).second) duplicates.insert(id);
                }
                ElementSeq children = element.getContent()->childElements();
                if (!children.isEmpty()) pending.push_back(children);
            }
        }
        for (const std::wstring& id : duplicates) tables->ids.erase(id);
        for (const XMLElement* element : associationElements) indexAssociation(*element, *tables);
        built = std::move(tables);
    });
    return *built;
}

bool Xmi2Search::isUml(const XMLElement& element) const {
    bool uml = false;
    classify(element, uml);
    return uml;
}

_eString Xmi2Search::classify(const XMLElement& element, bool& uml) const {
    const _eString& tag = element.getName();
    _eString tagPrefix = prefix(tag);
    uml = umlPrefixes.contains(tagPrefix);
    if (!element.hasAttribute(typeKey)) return tagPrefix.isEmpty() ? _eString() : local(tag);
    _eString type = element.attributeText(typeKey, Context::shared());
    uml = uml && umlPrefixes.contains(prefix(type));
    return local(type);
}

_eString Xmi2Search::metaclass(const XMLElement& element) const {
    bool uml = false;
    return classify(element, uml);
}

bool Xmi2Search::isClass(const XMLElement& element) const { return classes.count(&element) != 0; }

ElementSeq Xmi2Search::descent(const XMLElement& element) const {
    auto found = holding.find(&element);
    return found == holding.end() ? ElementSeq() : found->second;
}

bool Xmi2Search::readsDocument(const XMLElement&) const { return true; }

_eHndl<XMLDictionary> Xmi2Search::dictionary(const XMLElement&) const { return XMLDictionary::empty(); }

ElementSeq Xmi2Search::properties(const XMLElement& element, const wchar_t* property) const {
    ElementSeq children = element.getContent()->childElements();
    ElementSeq out;
    for (int i = 0, n = children.size(); i < n; ++i) {
        const XMLElement& child = *children.get(i);
        if (textIs(local(child.getName()), property) && isUml(child)) out.pushBack(children.get(i));
    }
    return out;
}

_eString Xmi2Search::property(const XMLElement& element, const wchar_t* name, const wchar_t* absent) const {
    if (element.hasAttribute(name)) return element.attributeText(name, Context::shared());
    ElementSeq written = properties(element, name);
    return written.size() == 1 ? written.get(0)->getContent()->text() : _eString(absent);
}

_eSeq<_eString> Xmi2Search::references(const XMLElement& element, const wchar_t* name) const {
    if (element.hasAttribute(name)) return words(element.attributeText(name, Context::shared()));
    _eSeq<_eString> out;
    ElementSeq written = properties(element, name);
    for (int i = 0, n = written.size(); i < n; ++i)
        if (written.get(i)->hasAttribute(idrefKey))
            out.pushBack(written.get(i)->attributeText(idrefKey, Context::shared()));
    return out;
}

_eFrom<XMLElement> Xmi2Search::find(const Lookups& tables, const _eString& id) {
    auto found = tables.ids.find(toWString(id));
    return found == tables.ids.end() ? _eFrom<XMLElement>() : found->second;
}

_eFrom<XMLElement> Xmi2Search::lookup(const _eString& id) const { return find(lookups(), id); }

NameRecord Xmi2Search::readName(const XMLElement& element) const {
    NameRecord record;
    if (element.hasAttribute(L"name")) {
        record.text = element.attributeText(L"name", Context::shared());
        record.given = true;
        return record;
    }
    ElementSeq written = properties(element, L"name");
    if (written.size() == 1) {
        record.text = written.get(0)->getContent()->text();
        record.given = true;
    }
    return record;
}

// A class reads as a class, anything else by its name.
TypeRecord Xmi2Search::typeOfElement(const XMLElement& target) const {
    TypeRecord record;
    record.name = readName(target);
    record.kind = textIs(metaclass(target), L"Class") ? TypeRecord::classType : TypeRecord::named;
    record.leaf = record.kind == TypeRecord::classType && textIs(property(target, L"isLeaf", L"false"), L"true");
    return record;
}

// By attribute, the id it holds; by element, the one child's "xmi:idref" or "href". More than
// one child, or an id that names nothing, reads "?".
TypeRecord Xmi2Search::readReference(const XMLElement& element, const wchar_t* name) const {
    _eFrom<XMLElement> target;
    if (element.hasAttribute(name)) {
        target = lookup(element.attributeText(name, Context::shared()));
    } else {
        ElementSeq written = properties(element, name);
        if (written.size() != 1) return {};
        const XMLElement& reference = *written.get(0);
        if (reference.hasAttribute(idrefKey))
            target = lookup(reference.attributeText(idrefKey, Context::shared()));
        else if (reference.hasAttribute(L"href"))
            return libraryType(reference.attributeText(L"href", Context::shared()));
    }
    return target.isNull() ? TypeRecord() : typeOfElement(*target);
}

_eString Xmi2Search::typeId(const XMLElement& element) const {
    _eSeq<_eString> named = references(element, L"type");
    return named.size() == 1 ? named.get(0) : _eString();
}

int Xmi2Search::typeCount(const XMLElement& element) const {
    return element.hasAttribute(L"type") ? 1 : properties(element, L"type").size();
}

_eString Xmi2Search::bound(const XMLElement& element, const wchar_t* name, const wchar_t* absent, bool& found) const {
    ElementSeq written = properties(element, name);
    if (written.size() > 1) found = false;
    if (written.size() != 1) return absent;
    return property(*written.get(0), L"value", L"0");
}

// Without "lowerValue" the lower bound is 1, without "upperValue" the upper; a value element
// without a "value" holds 0.
MultiplicityRecord Xmi2Search::readMultiplicity(const XMLElement& element) const {
    MultiplicityRecord record;
    record.single = true;
    record.lower = bound(element, L"lowerValue", L"1", record.single);
    record.upper = bound(element, L"upperValue", L"1", record.single);
    return record;
}

// The value of the one "defaultValue": a literal's "value", with the metamodel's default when
// it is left out, or the first "body" of an opaque expression; "?" for none.
_eString Xmi2Search::defaultValue(const XMLElement& element) const {
    ElementSeq written = properties(element, L"defaultValue");
    if (written.size() != 1) return L"?";
    const XMLElement& value = *written.get(0);
    _eString kind = metaclass(value);
    if (textIs(kind, L"LiteralInteger") || textIs(kind, L"LiteralUnlimitedNatural") || textIs(kind, L"LiteralReal"))
        return property(value, L"value", L"0");
    if (textIs(kind, L"LiteralBoolean")) return property(value, L"value", L"false");
    if (textIs(kind, L"LiteralString")) return property(value, L"value", L"?");
    if (!textIs(kind, L"OpaqueExpression")) return L"?";
    if (value.hasAttribute(L"body")) return value.attributeText(L"body", Context::shared());
    ElementSeq bodies = properties(value, L"body");
    return bodies.isEmpty() ? _eString(L"?") : bodies.get(0)->getContent()->text();
}

bool Xmi2Search::isAssociationEnd(const XMLElement& element) const {
    return element.hasAttribute(L"association") ||
           (element.hasAttribute(idKey) && lookups().endIds.contains(element.attributeText(idKey, Context::shared())));
}

AttributeRecord Xmi2Search::readAttribute(const XMLElement& element) const {
    AttributeRecord record;
    record.name = readName(element);
    record.visibility = property(element, L"visibility", L"public");
    record.changeability = textIs(property(element, L"isReadOnly", L"false"), L"true") ? L"frozen" : L"changeable";
    record.initialValue = defaultValue(element);
    record.type = readReference(element, L"type");
    record.multiplicity = readMultiplicity(element);
    return record;
}

// A result is void without a type, with a type that reads "void", or with a type attribute
// whose id names nothing.
ParameterRecord Xmi2Search::readParameter(const XMLElement& element) const {
    ParameterRecord record;
    record.name = readName(element);
    record.kind = property(element, L"direction", L"in");
    record.type = readReference(element, L"type");
    if (!textIs(record.kind, L"return")) return record;
    bool untyped = typeCount(element) == 0;
    bool unknownById = element.hasAttribute(L"type") && record.type.kind == TypeRecord::unresolved;
    record.voidReturn = untyped || unknownById || ClassRenderer::readsVoid(record.type);
    return record;
}

OperationRecord Xmi2Search::readOperation(const XMLElement& element) const {
    OperationRecord record;
    record.name = readName(element);
    record.visibility = property(element, L"visibility", L"public");
    record.isAbstract = property(element, L"isAbstract", L"false");
    record.isLeaf = property(element, L"isLeaf", L"false");
    record.ownerScope = textIs(property(element, L"isStatic", L"false"), L"true") ? L"classifier" : L"instance";
    ElementSeq parameters = properties(element, L"ownedParameter");
    for (int i = 0, n = parameters.size(); i < n; ++i) record.parameters.push_back(readParameter(*parameters.get(i)));
    return record;
}

// UML 2 marks the whole of an aggregation on the end typed by the part: the end that UML 1.x
// marks is the other one, and "shared" is its "aggregate".
AssociationRecord Xmi2Search::readAssociation(const Association& association) const {
    AssociationRecord record;
    for (int i = 0, n = association.ends.size(); i < n; ++i) {
        const XMLElement& end = *association.ends.get(i);
        AssociationEndRecord endRecord;
        endRecord.name = readName(end);
        endRecord.visibility = property(end, L"visibility", L"public");
        bool ownedByClass = textIs(local(end.getName()), L"ownedAttribute");
        bool listed = end.hasAttribute(idKey) &&
                      association.navigableOwnedEnds.contains(end.attributeText(idKey, Context::shared()));
        bool navigable = ownedByClass || listed || textIs(property(end, L"isNavigable", L"false"), L"true");
        endRecord.isNavigable = navigable ? L"true" : L"false";
        _eString aggregation =
            n == 2 ? property(*association.ends.get(1 - i), L"aggregation", L"none") : _eString(L"none");
        endRecord.aggregation = textIs(aggregation, L"shared") ? _eString(L"aggregate") : aggregation;
        endRecord.typeId = typeId(end);
        endRecord.singleType = typeCount(end) == 1;
        endRecord.type = readReference(end, L"type");
        if (endRecord.singleType) endRecord.roleType = endRecord.type;
        endRecord.multiplicity = readMultiplicity(end);
        record.ends.push_back(endRecord);
    }
    return record;
}

// An association by the ends its "memberEnd" lists (or, when it lists none, by its own ends),
// and by the classes their types name.
void Xmi2Search::indexAssociation(const XMLElement& element, Lookups& tables) const {
    Association association;
    _eSeq<_eString> members = references(element, L"memberEnd");
    ElementSeq candidates;
    if (members.isEmpty()) candidates = properties(element, L"ownedEnd");
    for (int i = 0, n = members.size(); i < n; ++i) {
        tables.endIds.add(members.get(i));
        _eFrom<XMLElement> end = find(tables, members.get(i));
        if (!end.isNull()) candidates.pushBack(end);
    }
    for (int i = 0, n = candidates.size(); i < n; ++i)
        if (typeCount(*candidates.get(i)) > 0) association.ends.pushBack(candidates.get(i));
    _eSeq<_eString> navigable = references(element, L"navigableOwnedEnd");
    for (int i = 0, n = navigable.size(); i < n; ++i) association.navigableOwnedEnds.add(navigable.get(i));
    int index = int(tables.associations.size());
    Names classIds;
    for (int i = 0, n = association.ends.size(); i < n; ++i) classIds.add(typeId(*association.ends.get(i)));
    for (int i = 0, n = classIds.size(); i < n; ++i) tables.byClassId[toWString(classIds.at(i))].push_back(index);
    tables.associations.push_back(association);
}

// Its attributes, then its operations, then the members its associations give, then its
// generalizations' parents, each in document order.
ClassRecord Xmi2Search::readClass(const XMLElement& element, const _eHndl<Context>&) const {
    ClassRecord record;
    record.name = readName(element);
    record.isLeaf = property(element, L"isLeaf", L"false");
    record.isAbstract = property(element, L"isAbstract", L"false");
    ElementSeq attributes = properties(element, L"ownedAttribute");
    for (int i = 0, n = attributes.size(); i < n; ++i) {
        if (isAssociationEnd(*attributes.get(i))) continue;
        FeatureRecord& feature = record.features.emplace_back();
        feature.kind = FeatureRecord::attribute;
        feature.attributeRecord = readAttribute(*attributes.get(i));
    }
    ElementSeq operations = properties(element, L"ownedOperation");
    for (int i = 0, n = operations.size(); i < n; ++i) {
        FeatureRecord& feature = record.features.emplace_back();
        feature.kind = FeatureRecord::operation;
        feature.operationRecord = readOperation(*operations.get(i));
    }
    ElementSeq generalizations = properties(element, L"generalization");
    for (int i = 0, n = generalizations.size(); i < n; ++i)
        record.parents.push_back(readReference(*generalizations.get(i), L"general"));
    if (!element.hasAttribute(idKey)) return record;
    record.id = element.attributeText(idKey, Context::shared());
    const Lookups& tables = lookups();
    auto found = tables.byClassId.find(toWString(record.id));
    if (found != tables.byClassId.end())
        for (int index : found->second)
            record.associations.push_back(readAssociation(tables.associations[std::size_t(index)]));
    return record;
}
