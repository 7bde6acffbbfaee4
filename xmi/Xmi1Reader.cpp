// The XMI 1.x readers, and what the element classes of a UML 1.x model read into the records
// of a class. Nothing here decides how anything reads in the target language; `ClassRenderer`
// does.
#include "xmi/Xmi1Reader.h"

#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"
#include "xmi/XMLDictionary.h"
#include "xmi/XmiHelpers.h"

namespace {

// The children of `content` named `name` that are elements of class `Element`: a child of that
// name written as an empty-element tag, or as a reference, reads as nothing.
template <class Element, class Visit>
void forEachChild(const XMLcontent& content, const wchar_t* name, Visit visit) {
    ElementSeq children = content.childrenNamed(name);
    for (int i = 0, n = children.size(); i < n; ++i)
        if (const auto* element = dynamic_cast<const Element*>(children.get(i).get())) visit(*element);
}

_eString idOf(const XMLElement& element) { return element.ownId(); }

// The text of a tagged value whose tag is `tag`: written by name ("tag", UML 1.3) or as a
// reference to a tag definition of that name (UML 1.4), its value in "value" or "dataValue".
std::optional<_eString> taggedValue(const XMLElement& element, const wchar_t* tag, const _eHndl<Context>& context) {
    static const _eString holder = L"UML:ModelElement.taggedValue";
    if (!element.getContent()->hasChild(holder)) return std::nullopt;
    ElementSeq values = element.getContent()->elementsAtPath({L"UML:ModelElement.taggedValue", L"UML:TaggedValue"});
    for (int i = 0, n = values.size(); i < n; ++i) {
        const XMLElement& value = *values.get(i);
        std::optional<_eString> name = value.propertyText(L"tag", L"UML:TaggedValue.tag", context);
        ElementSeq definitions = value.getContent()->elementsAtPath({L"UML:TaggedValue.type", L"UML:TagDefinition"});
        if (!name && definitions.size() == 1 && definitions.get(0)->hasAttribute(L"xmi.idref")) {
            _eFrom<XMLElement> definition = context->lookup(definitions.get(0)->attributeText(L"xmi.idref", context));
            if (!definition.isNull()) name = definition->readName().text;
        }
        if (!name || !textIs(*name, tag)) continue;
        if (std::optional<_eString> text = value.propertyText(L"value", L"UML:TaggedValue.value", context)) return text;
        ElementSeq data = value.getContent()->childrenNamed(L"UML:TaggedValue.dataValue");
        if (data.size() == 1) return data.get(0)->getContent()->text();
    }
    return std::nullopt;
}

// In every form, an initial value written as an XML attribute, "initialValue" or "value"; an
// empty one is none.
std::optional<_eString> olderInitialValue(const XMLElement& element, const _eHndl<Context>& context) {
    for (const wchar_t* name : {L"initialValue", L"value"})
        if (std::optional<_eString> text = element.olderAttribute(name, context))
            if (!text->isEmpty()) return text;
    return std::nullopt;
}

MemberForms formsOf(const ImportExtensions& extensions) {
    return extensions.everyForm ? MemberForms::every : MemberForms::specified;
}

}  // namespace

// What documents an element: its tagged value "documentation", else the "comment" attribute
// that some exporters write; in every form also a "documentation" attribute.
std::optional<_eString> XMLElement::documentation(const _eHndl<Context>& context) const {
    if (std::optional<_eString> text = taggedValue(*this, L"documentation", context)) return text;
    static const _eString comment = L"comment";
    if (hasAttribute(comment)) return attributeText(comment, context);
    return olderAttribute(L"documentation", context);
}

bool Xmi1Reader::readsDocument() const { return root->getName() == _eString(L"XMI"); }

NameRecord Xmi1Reader::readName(const XMLElement& element) const { return element.readName(); }

_eString Xmi1Reader::definedKind(const XMLElement& element, bool& descend) const {
    descend = !textIs(element.getName(), L"XMI.extension");
    static const _eString uml = L"UML:";
    if (!element.getName().startsWith(uml) || !element.hasAttribute(L"xmi.id") || element.hasAttribute(L"xmi.idref"))
        return {};
    return element.getName().drop(uml.size());
}

bool Xmi1Reader::isPackage(const XMLElement& element) const {
    return element.getName() == _eString(L"UML:Package") || element.getName() == _eString(L"UML:Subsystem");
}

ClassRecord Xmi1Reader::readClass(const FoundClass& found, const _eHndl<Context>& context) const {
    _eHndl<Context> reading = context->reading(forms);
    ClassRecord record = FCClassElement::readClass(*found.element, reading);
    record.documentation = found.element->documentation(reading);
    record.packagePath = found.packagePath;
    return record;
}

std::shared_ptr<const ModelReader> Xmi1PathReader::recognise(const XMLElement& root, const ModelSource& source) {
    return std::make_shared<const Xmi1PathReader>(root, formsOf(source.extensions));
}

bool Xmi1PathReader::isClass(const XMLElement& element) const {
    return element.isRecognised() && element.getName() == _eString(L"UML:Class");
}

ElementSeq Xmi1PathReader::descent(const XMLElement& element) const {
    static const _eMap<_eString, Names> steps = [] {
        _eMap<_eString, Names> m;
        m.put(L"XMI", Names(_eString(L"XMI.content")));
        m.put(L"XMI.content", Names(_eString(L"UML:Model")));
        m.put(L"UML:Model", Names(_eString(L"UML:Namespace.ownedElement")));
        m.put(L"UML:Namespace.ownedElement", Names(_eString(L"UML:Class"), _eString(L"UML:Package")));
        m.put(L"UML:Package", Names(_eString(L"UML:Namespace.ownedElement"), _eString(L"UML:Package")));
        return m;
    }();
    if (!element.isRecognised()) return {};
    auto [index, end] = steps.lookup(element.getName());
    return index == end ? ElementSeq() : element.getContent()->childrenInSet(steps.elements().get(index).second);
}

std::shared_ptr<const ModelReader> Xmi1AnywhereReader::recognise(const XMLElement& root,
                                                                 const ModelSource& source) {
    return std::make_shared<const Xmi1AnywhereReader>(root, formsOf(source.extensions));
}

bool Xmi1AnywhereReader::isClass(const XMLElement& element) const {
    return element.getName() == _eString(L"UML:Class") && element.hasAttribute(L"xmi.id") &&
           !element.hasAttribute(L"xmi.idref");
}

ElementSeq Xmi1AnywhereReader::descent(const XMLElement& element) const {
    if (element.getName() == _eString(L"XMI")) return element.getContent()->childrenNamed(L"XMI.content");
    return element.getContent()->childElements();
}

TypeRecord FCClassElement::typeRecord(const _eHndl<Context>& context) const {
    return {TypeRecord::classType, readName(), XmiWords::flag(isLeaf(context)), ownId()};
}

// The features of every "UML:Classifier.feature" in turn (in every form, then those straight
// under the class); then the associations and generalizations that name the class's id, in the
// order the dictionary keeps them.
ClassRecord FCClassElement::readClass(const XMLElement& element, const _eHndl<Context>& context) {
    ClassRecord record;
    record.id = idOf(element);
    record.name = element.readName();
    record.isLeaf = XmiWords::flag(element.isLeaf(context));
    record.isAbstract = XmiWords::flag(element.isAbstract(context));
    forEachChild<FCClassifierFeatureElement>(*element.getContent(), L"UML:Classifier.feature",
                                             [&](const FCClassifierFeatureElement& group) {
                                                 readFeatures(*group.getContent(), context, record.features);
                                             });
    if (context->everyForm())
        readFeatures(*element.getContent(), context->reading(MemberForms::everyByName), record.features);
    if (!element.hasAttribute(L"xmi.id")) return record;
    Associations associations = context->getDictionary()->associationsOf(record.id, context);
    for (int i = 0, n = associations.size(); i < n; ++i) record.associations.push_back(associations.at(i)->read(context));
    Generalizations generalizations = context->getDictionary()->generalizationsOf(record.id, context);
    for (int i = 0, n = generalizations.size(); i < n; ++i)
        record.parents.push_back({idOf(*generalizations.at(i)), generalizations.at(i)->readParent(context)});
    return record;
}

void FCClassElement::readFeatures(const XMLcontent& content, const _eHndl<Context>& context,
                                  std::vector<FeatureRecord>& features) {
    forEachChild<FCAttributeElement>(content, L"UML:Attribute", [&](const FCAttributeElement& attribute) {
        features.emplace_back(attribute.read(context));
    });
    forEachChild<FCOperationElement>(content, L"UML:Operation", [&](const FCOperationElement& operation) {
        features.emplace_back(operation.read(context));
    });
}

AttributeRecord FCAttributeElement::read(const _eHndl<Context>& context) const {
    AttributeRecord record;
    record.id = idOf(*this);
    record.name = readName();
    record.visibility = XmiWords::visibility(visibility(context));
    record.changeability = XmiWords::changeability(
        attributeOrSubElement(L"changeability", L"UML:StructuralFeature.changeability", context));
    ElementSeq expressions = getContent()->elementsAtPath({L"UML:Attribute.initialValue", L"UML:Expression"});
    if (expressions.size() == 1)
        record.initialValue = expressions.get(0)->propertyText(L"body", L"UML:Expression.body", context);
    else if (expressions.isEmpty())
        record.initialValue = olderInitialValue(*this, context);
    record.type = readType(L"UML:StructuralFeature.type", context);
    record.multiplicity = readMultiplicity(L"UML:StructuralFeature.multiplicity", context);
    record.documentation = documentation(context);
    return record;
}

OperationRecord FCOperationElement::read(const _eHndl<Context>& context) const {
    OperationRecord record;
    record.id = idOf(*this);
    record.name = readName();
    record.visibility = XmiWords::visibility(visibility(context));
    record.isAbstract = XmiWords::flag(
        flagOrOlder(attributeOrSubElement(L"isAbstract", L"UML:Operation.isAbstract", context), L"abstract", context));
    record.isLeaf = XmiWords::flag(attributeOrSubElement(L"isLeaf", L"UML:Operation.isLeaf", context));
    record.scope = XmiWords::scope(attributeOrSubElement(L"ownerScope", L"UML:Feature.ownerScope", context));
    if (record.scope == Scope::unknown)
        if (std::optional<_eString> older = olderAttribute(L"static", context))
            record.scope = XmiWords::olderFlag(*older) ? Scope::classifier : Scope::instance;
    ElementSeq all = getContent()->elementsAtPath({L"UML:BehavioralFeature.parameter", L"UML:Parameter"});
    if (context->everyForm()) all = all.concat(getContent()->childrenNamed(L"UML:Parameter"));
    for (int i = 0, n = all.size(); i < n; ++i) record.parameters.push_back(readParameter(*all.get(i), context));
    if (std::optional<ParameterRecord> result = olderResult(context, record.parameters))
        record.parameters.push_back(*result);
    record.documentation = documentation(context);
    return record;
}

// In every form, an operation without a result parameter whose XML attribute "type" gives its
// result: by id, or by name straight under the class; "void" or nothing is no result.
std::optional<ParameterRecord> FCOperationElement::olderResult(const _eHndl<Context>& context,
                                                               const std::vector<ParameterRecord>& parameters) const {
    std::optional<_eString> type = olderAttribute(L"type", context);
    if (!type || type->isEmpty()) return std::nullopt;
    for (const ParameterRecord& each : parameters)
        if (each.direction == Direction::result) return std::nullopt;
    ParameterRecord result;
    result.direction = Direction::result;
    result.type = readType(L"UML:Operation.type", context);
    result.voidResult = !result.type.resolved() || ClassRenderer::readsVoid(result.type);
    return result;
}

// A result is void when its type element says "void" by value or by what it refers to; a
// result typed by an attribute is void unless the id leads to something not called "void".
// A result with no type at all is void; one whose type element leads nowhere is not.
ParameterRecord FCOperationElement::readParameter(const XMLElement& parameter, const _eHndl<Context>& context) {
    ParameterRecord record;
    record.id = idOf(parameter);
    record.name = parameter.readName();
    record.direction = XmiWords::direction(parameter.parameterKind(context));
    record.type = parameter.readType(L"UML:Parameter.type", context);
    if (record.direction != Direction::result) return record;
    const XMLcontent& content = *parameter.getContent();
    auto namedVoid = [&](const _eFrom<XMLElement>& found) {
        return !found.isNull() && ClassRenderer::readsVoid(found->typeRecord(context));
    };
    ElementSeq types = content.childrenNamed(L"UML:Parameter.type");
    if (!types.isEmpty()) {
        record.voidResult = textIs(content.singleChildAttribute(L"UML:Parameter.type", L"xmi.value", context), L"void") ||
                            (types.size() == 1 && namedVoid(context->lookup(types.get(0)->getContent()->referencedId(context))));
    } else if (!parameter.hasAttribute(L"type")) {
        record.voidResult = true;
    } else {
        _eFrom<XMLElement> found = context->lookup(parameter.attributeText(L"type", context));
        record.voidResult = found.isNull() || namedVoid(found);
    }
    return record;
}

// An end names its type by the child "UML:AssociationEnd.type"; in every form also by the child
// "UML:AssociationEnd.participant", or by the XML attribute "type" or "participant".
std::vector<FCAssociationElement::EndReference> FCAssociationElement::ends(const _eHndl<Context>& context) const {
    ElementSeq all = getContent()->elementsAtPath({L"UML:Association.connection", L"UML:AssociationEnd"});
    std::vector<EndReference> named;
    for (int i = 0, n = all.size(); i < n; ++i) {
        EndReference reference{all.get(i).get(), L"UML:AssociationEnd.type", {}, {}};
        const XMLcontent& content = *reference.end->getContent();
        reference.elements = content.childrenNamed(reference.elementName);
        if (reference.elements.isEmpty() && context->everyForm()) {
            reference.elementName = L"UML:AssociationEnd.participant";
            reference.elements = content.childrenNamed(reference.elementName);
            for (const wchar_t* name : {L"type", L"participant"})
                if (!reference.named()) reference.attributeId = reference.end->olderAttribute(name, context);
        }
        if (reference.named()) named.push_back(reference);
    }
    return named;
}

_eString FCAssociationElement::EndReference::id(const _eHndl<Context>& context) const {
    return attributeId ? *attributeId : elements.get(0)->getContent()->referencedId(context);
}

Names FCAssociationElement::endTypeIds(const _eHndl<Context>& context) const {
    Names ids;
    for (const EndReference& reference : ends(context)) ids.add(reference.id(context));
    return ids;
}

AssociationRecord FCAssociationElement::read(const _eHndl<Context>& context) const {
    AssociationRecord record;
    record.id = idOf(*this);
    for (const EndReference& reference : ends(context)) {
        const XMLElement& end = *reference.end;
        AssociationEndRecord endRecord;
        endRecord.id = idOf(end);
        endRecord.name = end.readName();
        endRecord.visibility = XmiWords::visibility(end.visibility(context));
        endRecord.isNavigable =
            XmiWords::flag(end.attributeOrSubElement(L"isNavigable", L"UML:AssociationEnd.isNavigable", context));
        endRecord.aggregation =
            XmiWords::aggregation(end.attributeOrSubElement(L"aggregation", L"UML:AssociationEnd.aggregation", context));
        endRecord.typeId = reference.id(context);
        if (reference.attributeId) {
            endRecord.singleType = true;
            endRecord.type = endRecord.roleType = typeOfAttribute(*reference.attributeId, context);
        } else {
            endRecord.singleType = reference.elements.size() == 1;
            endRecord.type = end.readType(reference.elementName, context);
            if (endRecord.singleType) endRecord.roleType = reference.elements.get(0)->referencedType(context);
        }
        endRecord.multiplicity = end.readMultiplicity(L"UML:AssociationEnd.multiplicity", context);
        record.ends.push_back(endRecord);
    }
    return record;
}

const Names& FCGeneralizationElement::childNames() {
    static const Names names(_eString(L"UML:Generalization.child"), _eString(L"UML:Generalization.subtype"));
    return names;
}

const Names& FCGeneralizationElement::parentNames() {
    static const Names names(_eString(L"UML:Generalization.parent"), _eString(L"UML:Generalization.supertype"));
    return names;
}

const Names& FCGeneralizationElement::innerNames() {
    static const Names names(_eString(L"UML:Class"), _eString(L"UML:GeneralizableElement"));
    return names;
}

// In every form the ids may also stand in the XML attributes "child" or "subtype", "parent" or
// "supertype".
_eString FCGeneralizationElement::endId(const Names& elementNames, const wchar_t* attribute, const wchar_t* older,
                                        const _eHndl<Context>& context) const {
    for (const wchar_t* name : {attribute, older})
        if (std::optional<_eString> id = olderAttribute(name, context)) return *id;
    return getContent()->grandchildAttributeInSet(elementNames, innerNames(), L"xmi.idref", context);
}

_eString FCGeneralizationElement::childId(const _eHndl<Context>& context) const {
    return endId(childNames(), L"child", L"subtype", context);
}

TypeRecord FCGeneralizationElement::readParent(const _eHndl<Context>& context) const {
    _eFrom<XMLElement> found = context->lookup(endId(parentNames(), L"parent", L"supertype", context));
    return found.isNull() ? TypeRecord::unresolvedReference()
                          : TypeRecord{TypeRecord::named, found->readName(), false, found->ownId()};
}
