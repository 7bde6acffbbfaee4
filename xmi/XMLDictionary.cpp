#include "xmi/XMLDictionary.h"

#include <algorithm>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

const _eHndl<XMLDictionary>& XMLDictionary::empty() {
    static const _eHndl<XMLDictionary> none(new XMLDictionary());
    return none;
}

_eFrom<XMLElement> XMLDictionary::lookup(const _eString& id) const { return entryIndex.find(id, entries); }

_eHndl<XMLDictionary> XMLDictionary::add(const _eString& id, const _eFrom<XMLElement>& element) const {
    _eHndl<XMLDictionary> result(new XMLDictionary(*this));
    if (entries.containsKey(id))
        result->duplicateIds.add(id);
    else
        result->entries.put(id, element);
    // Either way the id may now be both an entry and a duplicate: one that an earlier merge
    // dropped, entered again by an ancestor, is one too.
    if (result->duplicateIds.contains(id)) result->pendingIds.add(id);
    if (auto* association = dynamic_cast<FCAssociationElement*>(element.get())) result->associations.add(association);
    if (auto* generalization = dynamic_cast<FCGeneralizationElement*>(element.get()))
        result->generalizations.add(generalization);
    return result;
}

// The entries of the result are those of the larger side, less the dropped ids, with the
// entries of the smaller side that aren't dropped. Only the smaller side is walked: the larger
// side's keys that a merge drops are either keys of the smaller side, duplicates that the
// smaller side marks, or the larger side's own pending ids.
_eHndl<XMLDictionary> XMLDictionary::merge(const XMLDictionary& other) const {
    bool otherIsSmaller = other.weight() < weight();
    const XMLDictionary& large = otherIsSmaller ? *this : other;
    const XMLDictionary& small = otherIsSmaller ? other : *this;
    Names dropped = duplicateIds;
    dropped.addAll(other.duplicateIds);
    ClassMap kept = large.entries;
    Names gone = large.pendingIds;
    const _eSeq<ClassMap::Entry>& smallEntries = small.entries.elements();
    for (int i = 0, n = smallEntries.size(); i < n; ++i) {
        const _eString& id = smallEntries.get(i).first;
        if (large.entries.containsKey(id)) {
            dropped.add(id);
            gone.add(id);
        }
    }
    const _eSeq<_eString>& smallDuplicates = small.duplicateIds.elements();
    for (int i = 0, n = smallDuplicates.size(); i < n; ++i)
        if (large.entries.containsKey(smallDuplicates.get(i))) gone.add(smallDuplicates.get(i));
    for (int i = 0, n = gone.size(); i < n; ++i) kept.remove(gone.elements().get(i));
    for (int i = 0, n = smallEntries.size(); i < n; ++i)
        if (!dropped.contains(smallEntries.get(i).first)) kept.put(smallEntries.get(i).first, smallEntries.get(i).second);
    // Every dropped id is gone from `kept`, so the result has no pending ids.
    _eHndl<XMLDictionary> result(new XMLDictionary());
    result->entries = kept;
    result->duplicateIds = dropped;
    result->associations = associations;
    result->associations.addAll(other.associations);
    result->generalizations = generalizations;
    result->generalizations.addAll(other.generalizations);
    return result;
}

Names XMLDictionary::entriesAmong(const ClassMap& entries, const Names& ids) {
    Names found;
    if (ids.size() <= entries.size()) {
        for (int i = 0, n = ids.size(); i < n; ++i)
            if (entries.containsKey(ids.elements().get(i))) found.add(ids.elements().get(i));
    } else {
        for (int i = 0, n = entries.size(); i < n; ++i)
            if (ids.contains(entries.elements().get(i).first)) found.add(entries.elements().get(i).first);
    }
    return found;
}

Associations XMLDictionary::associationsOf(const _eString& classId, const _eHndl<Context>& context) const {
    return associationIndex.membersOf(classId, associations,
                                      [&](const FCAssociationElement& a) { return a.endTypeIds(context); });
}

Generalizations XMLDictionary::generalizationsOf(const _eString& classId, const _eHndl<Context>& context) const {
    return generalizationIndex.membersOf(classId, generalizations,
                                         [&](const FCGeneralizationElement& g) { return Names(g.childId(context)); });
}

void DictionaryGathering::enter() { open.emplace_back(); }

void DictionaryGathering::leave(const XMLElement& element, const _eString* id, bool adds) {
    if (id != nullptr) {
        auto [at, entered] = ids.try_emplace(*id, Slot{&element, false});
        if (!adds) {
            if (!entered) at->second = {nullptr, true};
        } else if (!entered && at->second.element != nullptr) {
            // Entered below: marked, and the entry stays. Dropped below: entered again.
            at->second.duplicate = true;
        } else if (!entered) {
            at->second.element = &element;
        }
    }
    relate(element, id != nullptr);
}

void DictionaryGathering::relate(const XMLElement& element, bool related) {
    std::optional<Relations> own = std::move(open.back());
    open.pop_back();
    if (related) {
        // Both classes are final: the class of the element tells, without a search of its bases.
        const std::type_info& type = typeid(element);
        if (type == typeid(FCAssociationElement)) {
            if (!own) own.emplace();
            own->associations.add(const_cast<FCAssociationElement*>(static_cast<const FCAssociationElement*>(&element)));
        } else if (type == typeid(FCGeneralizationElement)) {
            if (!own) own.emplace();
            own->generalizations.add(
                const_cast<FCGeneralizationElement*>(static_cast<const FCGeneralizationElement*>(&element)));
        }
    }
    if (!own) return;
    if (open.empty()) {
        all = std::move(*own);
        return;
    }
    std::optional<Relations>& into = open.back();
    if (!into) {
        into = std::move(own);
        return;
    }
    into->associations.addAll(own->associations);
    into->generalizations.addAll(own->generalizations);
}

_eHndl<XMLDictionary> DictionaryGathering::dictionary() const {
    auto byRank = [](const _eString& a, const _eString& b) { return rankStrings(a, b) == rankBelow; };
    // The entries in the order of their ids, sorted as pointers to them: moving an entry whole
    // would move its handles.
    std::vector<const std::pair<const _eString, Slot>*> keyed;
    std::vector<_eString> marked;
    for (const auto& entry : ids) {
        if (entry.second.element != nullptr) keyed.push_back(&entry);
        if (entry.second.duplicate) marked.push_back(entry.first);
    }
    std::sort(keyed.begin(), keyed.end(), [&](const auto* a, const auto* b) { return byRank(a->first, b->first); });
    std::vector<ClassMap::Entry> ordered;
    ordered.reserve(keyed.size());
    for (const auto* entry : keyed) ordered.push_back({entry->first, const_cast<XMLElement*>(entry->second.element)});
    std::sort(marked.begin(), marked.end(), byRank);
    return new XMLDictionary(ClassMap::fromAscending(_eSeq<ClassMap::Entry>(int(ordered.size()), ordered.data())),
                             Names::fromAscending(_eSeq<_eString>(int(marked.size()), marked.data())),
                             all.associations, all.generalizations);
}
