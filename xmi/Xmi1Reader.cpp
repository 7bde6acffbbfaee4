// The XMI 1.x reader: what the element classes of a UML 1.x model read into the records of a
// class. Nothing here decides how anything reads in the target language; `ClassRenderer` does.
#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"
#include "xmi/XMLDictionary.h"

namespace {

// The children of `content` named `name` that are elements of class `Element`: a child of that
// name written as an empty-element tag, or as a reference, reads as nothing.
template <class Element, class Visit>
void forEachChild(const XMLcontent& content, const wchar_t* name, Visit visit) {
    ElementSeq children = content.childrenNamed(name);
    for (int i = 0, n = children.size(); i < n; ++i)
        if (const auto* element = dynamic_cast<const Element*>(children.get(i).get())) visit(*element);
}

}  // namespace

TypeRecord FCClassElement::typeRecord(const _eHndl<Context>& context) const {
    return {TypeRecord::classType, readName(), textIs(isLeaf(context), L"true")};
}

// The features of every "UML:Classifier.feature" in turn; then the associations and
// generalizations that name the class's id, in the order the dictionary keeps them.
ClassRecord FCClassElement::readClass(const XMLElement& element, const _eHndl<Context>& context) {
    ClassRecord record;
    record.name = element.readName();
    record.isLeaf = element.isLeaf(context);
    record.isAbstract = element.isAbstract(context);
    forEachChild<FCClassifierFeatureElement>(*element.getContent(), L"UML:Classifier.feature",
                                             [&](const FCClassifierFeatureElement& group) {
                                                 group.readFeatures(context, record.features);
                                             });
    if (!element.hasAttribute(L"xmi.id")) return record;
    record.id = element.attributeText(L"xmi.id", context);
    Associations associations = context->getDictionary()->associationsOf(record.id, context);
    for (int i = 0, n = associations.size(); i < n; ++i) record.associations.push_back(associations.at(i)->read(context));
    Generalizations generalizations = context->getDictionary()->generalizationsOf(record.id, context);
    for (int i = 0, n = generalizations.size(); i < n; ++i)
        record.parents.push_back(generalizations.at(i)->readParent(context));
    return record;
}

void FCClassifierFeatureElement::readFeatures(const _eHndl<Context>& context, std::vector<FeatureRecord>& features) const {
    forEachChild<FCAttributeElement>(*getContent(), L"UML:Attribute", [&](const FCAttributeElement& attribute) {
        FeatureRecord& feature = features.emplace_back();
        feature.kind = FeatureRecord::attribute;
        feature.attributeRecord = attribute.read(context);
    });
    forEachChild<FCOperationElement>(*getContent(), L"UML:Operation", [&](const FCOperationElement& operation) {
        FeatureRecord& feature = features.emplace_back();
        feature.kind = FeatureRecord::operation;
        feature.operationRecord = operation.read(context);
    });
}

AttributeRecord FCAttributeElement::read(const _eHndl<Context>& context) const {
    AttributeRecord record;
    record.name = readName();
    record.visibility = visibility(context);
    record.changeability = attributeOrSubElement(L"changeability", L"UML:StructuralFeature.changeability", context);
    ElementSeq expressions = getContent()->elementsAtPath({L"UML:Attribute.initialValue", L"UML:Expression"});
    record.initialValue = expressions.size() != 1
                              ? _eString(L"?")
                              : expressions.get(0)->attributeOrSubElement(L"body", L"UML:Expression.body", context);
    record.type = readType(L"UML:StructuralFeature.type", context);
    record.multiplicity = readMultiplicity(L"UML:StructuralFeature.multiplicity", context);
    return record;
}

OperationRecord FCOperationElement::read(const _eHndl<Context>& context) const {
    OperationRecord record;
    record.name = readName();
    record.visibility = visibility(context);
    record.isAbstract = attributeOrSubElement(L"isAbstract", L"UML:Operation.isAbstract", context);
    record.isLeaf = attributeOrSubElement(L"isLeaf", L"UML:Operation.isLeaf", context);
    record.ownerScope = attributeOrSubElement(L"ownerScope", L"UML:Feature.ownerScope", context);
    ElementSeq all = getContent()->elementsAtPath({L"UML:BehavioralFeature.parameter", L"UML:Parameter"});
    for (int i = 0, n = all.size(); i < n; ++i) record.parameters.push_back(readParameter(*all.get(i), context));
    return record;
}

// A result is void when its type element says "void" by value or by what it refers to; a
// result typed by an attribute is void unless the id leads to something not called "void".
// A result with no type at all is void; one whose type element leads nowhere is not.
ParameterRecord FCOperationElement::readParameter(const XMLElement& parameter, const _eHndl<Context>& context) {
    ParameterRecord record;
    record.name = parameter.readName();
    record.kind = parameter.parameterKind(context);
    record.type = parameter.readType(L"UML:Parameter.type", context);
    if (!textIs(record.kind, L"return")) return record;
    const XMLcontent& content = *parameter.getContent();
    auto namedVoid = [&](const _eFrom<XMLElement>& found) {
        return !found.isNull() && ClassRenderer::readsVoid(found->typeRecord(context));
    };
    ElementSeq types = content.childrenNamed(L"UML:Parameter.type");
    if (!types.isEmpty()) {
        record.voidReturn = textIs(content.singleChildAttribute(L"UML:Parameter.type", L"xmi.value", context), L"void") ||
                            (types.size() == 1 && namedVoid(context->lookup(types.get(0)->getContent()->referencedId(context))));
    } else if (!parameter.hasAttribute(L"type")) {
        record.voidReturn = true;
    } else {
        _eFrom<XMLElement> found = context->lookup(parameter.attributeText(L"type", context));
        record.voidReturn = found.isNull() || namedVoid(found);
    }
    return record;
}

ElementSeq FCAssociationElement::ends() const {
    ElementSeq all = getContent()->elementsAtPath({L"UML:Association.connection", L"UML:AssociationEnd"});
    ElementSeq out;
    for (int i = 0, n = all.size(); i < n; ++i)
        if (all.get(i)->getContent()->hasChild(L"UML:AssociationEnd.type")) out.pushBack(all.get(i));
    return out;
}

Names FCAssociationElement::endTypeIds(const _eHndl<Context>& context) const {
    ElementSeq all = ends();
    Names ids;
    for (int i = 0, n = all.size(); i < n; ++i) {
        ElementSeq types = all.get(i)->getContent()->childrenNamed(L"UML:AssociationEnd.type");
        ids.add(types.get(0)->getContent()->referencedId(context));
    }
    return ids;
}

AssociationRecord FCAssociationElement::read(const _eHndl<Context>& context) const {
    AssociationRecord record;
    ElementSeq all = ends();
    for (int i = 0, n = all.size(); i < n; ++i) {
        const XMLElement& end = *all.get(i);
        ElementSeq types = end.getContent()->childrenNamed(L"UML:AssociationEnd.type");
        AssociationEndRecord endRecord;
        endRecord.name = end.readName();
        endRecord.visibility = end.visibility(context);
        endRecord.isNavigable = end.attributeOrSubElement(L"isNavigable", L"UML:AssociationEnd.isNavigable", context);
        endRecord.aggregation = end.attributeOrSubElement(L"aggregation", L"UML:AssociationEnd.aggregation", context);
        endRecord.typeId = types.get(0)->getContent()->referencedId(context);
        endRecord.singleType = types.size() == 1;
        endRecord.type = end.readType(L"UML:AssociationEnd.type", context);
        if (endRecord.singleType) endRecord.roleType = types.get(0)->referencedType(context);
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

_eString FCGeneralizationElement::childId(const _eHndl<Context>& context) const {
    return getContent()->grandchildAttributeInSet(childNames(), innerNames(), L"xmi.idref", context);
}

TypeRecord FCGeneralizationElement::readParent(const _eHndl<Context>& context) const {
    _eFrom<XMLElement> found =
        context->lookup(getContent()->grandchildAttributeInSet(parentNames(), innerNames(), L"xmi.idref", context));
    return found.isNull() ? TypeRecord() : TypeRecord{TypeRecord::named, found->readName(), false};
}
