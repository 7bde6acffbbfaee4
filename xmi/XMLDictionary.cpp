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

namespace {

void sortStrings(std::vector<_eString>& strings) {
    std::sort(strings.begin(), strings.end(),
              [](const _eString& a, const _eString& b) { return rankStrings(a, b) == rankBelow; });
}

// The ids of `gathered` whose slots `wanted` picks, in their order.
Names idsWhere(const GatheredIds& gathered, bool (*wanted)(const GatheredId&)) {
    std::vector<_eString> ids;
    for (const auto& [id, slot] : gathered)
        if (wanted(slot)) ids.push_back(id.string());
    sortStrings(ids);
    return Names::fromAscending(_eSeq<_eString>(int(ids.size()), ids.data()));
}

}  // namespace

XMLDictionary::XMLDictionary(std::shared_ptr<const GatheredIds> gathered, const Names& duplicateIds,
                             const Associations& associations, const Generalizations& generalizations)
    : unmade(gathered),
      duplicateIds(duplicateIds),
      associations(associations),
      generalizations(generalizations),
      pendingIds(idsWhere(*gathered, [](const GatheredId& slot) { return slot.element != nullptr && slot.duplicate; })),
      entryIndex(std::move(gathered)) {}

const ClassMap& XMLDictionary::getEntries() const {
    if (unmade) {
        std::vector<ClassMap::Entry> ordered;
        ordered.reserve(unmade->size());
        for (const auto& [id, slot] : *unmade)
            if (slot.element != nullptr) ordered.push_back({id.string(), const_cast<XMLElement*>(slot.element)});
        std::sort(ordered.begin(), ordered.end(), [](const ClassMap::Entry& a, const ClassMap::Entry& b) {
            return rankStrings(a.first, b.first) == rankBelow;
        });
        entries = ClassMap::fromAscending(_eSeq<ClassMap::Entry>(int(ordered.size()), ordered.data()));
        unmade.reset();
    }
    return entries;
}

_eFrom<XMLElement> XMLDictionary::lookup(const _eString& id) const {
    if (!entryIndex.isBuilt()) {
        const ClassMap& all = getEntries();
        if (all.isEmpty()) return {};
        entryIndex.build(all);
    }
    return entryIndex.find(id);
}

_eHndl<XMLDictionary> XMLDictionary::add(const _eString& id, const _eFrom<XMLElement>& element) const {
    bool entered = getEntries().containsKey(id);
    _eHndl<XMLDictionary> result(new XMLDictionary(*this));
    if (entered)
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
    const ClassMap& largeEntries = large.getEntries();
    ClassMap kept = largeEntries;
    Names gone = large.pendingIds;
    const _eSeq<ClassMap::Entry>& smallEntries = small.getEntries().elements();
    for (int i = 0, n = smallEntries.size(); i < n; ++i) {
        const _eString& id = smallEntries.get(i).first;
        if (largeEntries.containsKey(id)) {
            dropped.add(id);
            gone.add(id);
        }
    }
    const _eSeq<_eString>& smallDuplicates = small.duplicateIds.elements();
    for (int i = 0, n = smallDuplicates.size(); i < n; ++i)
        if (largeEntries.containsKey(smallDuplicates.get(i))) gone.add(smallDuplicates.get(i));
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

void DictionaryGathering::leave(const XMLElement& element, const DictionaryKey* id, bool adds) {
    if (id != nullptr) {
        auto [at, entered] = ids.try_emplace(*id, GatheredId{&element, false});
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

namespace {

std::uint64_t placeOf(const XMLElement& element) {
    const Position& at = element.getPosition();
    return std::uint64_t(std::uint32_t(at.line)) << 32 | std::uint32_t(at.column);
}

}  // namespace

template <class Element>
void DictionaryGathering::addUnlessThere(std::vector<Element*>& set, Element* member) const {
    if (relatedAt.find(placeOf(*member))->second > 1)
        for (Element* held : set)
            if (held == member || held->equalFields(*member)) return;
    set.push_back(member);
}

template <class Element>
void DictionaryGathering::join(std::vector<Element*>& into, std::vector<Element*>& from) const {
    if (from.empty()) return;
    if (into.empty()) {
        into = std::move(from);
        return;
    }
    // The smaller side goes into the larger.
    if (from.size() >= into.size()) into.swap(from);
    for (Element* member : from) addUnlessThere(into, member);
}

void DictionaryGathering::relate(const XMLElement& element, bool related) {
    std::optional<Relations> own = std::move(open.back());
    open.pop_back();
    if (related) {
        // Both classes are final: the class of the element tells, without a search of its bases.
        const std::type_info& type = typeid(element);
        bool association = type == typeid(FCAssociationElement);
        if (association || type == typeid(FCGeneralizationElement)) {
            ++relatedAt[placeOf(element)];
            if (!own) own.emplace();
            auto* member = const_cast<XMLElement*>(&element);
            if (association)
                addUnlessThere(own->associations, static_cast<FCAssociationElement*>(member));
            else
                addUnlessThere(own->generalizations, static_cast<FCGeneralizationElement*>(member));
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
    join(into->associations, own->associations);
    join(into->generalizations, own->generalizations);
}

namespace {

// The set of `members`, all of one rank, in their order.
template <class Element>
_eSet<_eHndl<Element>> setOf(const std::vector<Element*>& members) {
    std::vector<_eHndl<Element>> held(members.begin(), members.end());
    return _eSet<_eHndl<Element>>::fromAscending(_eSeq<_eHndl<Element>>(int(held.size()), held.data()));
}

}  // namespace

_eHndl<XMLDictionary> DictionaryGathering::dictionary() && {
    auto gathered = std::make_shared<const GatheredIds>(std::move(ids));
    Names marked = idsWhere(*gathered, [](const GatheredId& slot) { return slot.duplicate; });
    return new XMLDictionary(std::move(gathered), marked, setOf(all.associations), setOf(all.generalizations));
}
