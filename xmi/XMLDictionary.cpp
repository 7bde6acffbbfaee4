#include "xmi/XMLDictionary.h"

const _eHndl<XMLDictionary>& XMLDictionary::empty() {
    static const _eHndl<XMLDictionary> none(new XMLDictionary());
    return none;
}

_eFrom<XMLElement> XMLDictionary::lookup(const _eString& id) const {
    auto [index, end] = entries.lookup(id);
    return index == end ? _eFrom<XMLElement>() : entries.at(index).second;
}

_eHndl<XMLDictionary> XMLDictionary::add(const _eString& id, const _eFrom<XMLElement>& element) const {
    _eHndl<XMLDictionary> result(new XMLDictionary(*this));
    if (entries.containsKey(id))
        result->duplicateIds.add(id);
    else
        result->entries.put(id, element);
    if (auto* association = dynamic_cast<FCAssociationElement*>(element.get())) result->associations.add(association);
    if (auto* generalization = dynamic_cast<FCGeneralizationElement*>(element.get()))
        result->generalizations.add(generalization);
    return result;
}

_eHndl<XMLDictionary> XMLDictionary::merge(const XMLDictionary& other) const {
    Names dropped;
    for (int i = 0, n = entries.size(); i < n; ++i)
        if (other.entries.containsKey(entries.at(i).first)) dropped.add(entries.at(i).first);
    dropped.addAll(duplicateIds);
    dropped.addAll(other.duplicateIds);
    ClassMap kept;
    for (const ClassMap* side : {&entries, &other.entries})
        for (int i = 0, n = side->size(); i < n; ++i)
            if (!dropped.contains(side->at(i).first)) kept.put(side->at(i).first, side->at(i).second);
    Associations allAssociations = associations;
    allAssociations.addAll(other.associations);
    Generalizations allGeneralizations = generalizations;
    allGeneralizations.addAll(other.generalizations);
    return _eHndl<XMLDictionary>(new XMLDictionary(kept, dropped, allAssociations, allGeneralizations));
}

Associations XMLDictionary::associationsOf(const _eString& classId, const _eHndl<Context>& context) const {
    Associations out;
    for (int i = 0, n = associations.size(); i < n; ++i)
        if (associations.at(i)->involves(classId, context)) out.add(associations.at(i));
    return out;
}

Generalizations XMLDictionary::generalizationsOf(const _eString& classId, const _eHndl<Context>& context) const {
    Generalizations out;
    for (int i = 0, n = generalizations.size(); i < n; ++i)
        if (generalizations.at(i)->isChild(classId, context)) out.add(generalizations.at(i));
    return out;
}
