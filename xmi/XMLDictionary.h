// `XMLDictionary`: every element that bears an "xmi.id", and the model's associations and
// generalizations. A value: every operation gives a new dictionary.
#pragma once

#include "xmi/XMLElement.h"

using Associations = _eSet<_eHndl<FCAssociationElement>>;
using Generalizations = _eSet<_eHndl<FCGeneralizationElement>>;

class XMLDictionary : public _eClass<XMLDictionary, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule18, 0};

    XMLDictionary() = default;
    XMLDictionary(const ClassMap& entries, const Names& duplicateIds, const Associations& associations,
                  const Generalizations& generalizations)
        : entries(entries), duplicateIds(duplicateIds), associations(associations), generalizations(generalizations) {}

    // The one dictionary without entries.
    static const _eHndl<XMLDictionary>& empty();

    bool equalFields(const XMLDictionary& other) const {
        return entries == other.entries && duplicateIds == other.duplicateIds && associations == other.associations &&
               generalizations == other.generalizations;
    }

    // The element of `id`, or null.
    _eFrom<XMLElement> lookup(const _eString& id) const;
    // A first definition enters; a second only marks the id as duplicate.
    _eHndl<XMLDictionary> add(const _eString& id, const _eFrom<XMLElement>& element) const;
    // Ids that both define, or either marks, are dropped for good.
    _eHndl<XMLDictionary> merge(const XMLDictionary& other) const;
    // The associations that involve the class, and the generalizations whose child it is.
    Associations associationsOf(const _eString& classId, const _eHndl<Context>& context) const;
    Generalizations generalizationsOf(const _eString& classId, const _eHndl<Context>& context) const;

    const ClassMap& getEntries() const { return entries; }
    const Names& getDuplicateIds() const { return duplicateIds; }
    const Associations& getAssociations() const { return associations; }
    const Generalizations& getGeneralizations() const { return generalizations; }

private:
    ClassMap entries;  // id to element
    Names duplicateIds;
    Associations associations;
    Generalizations generalizations;
};
