// `XMLDictionary`: every element that bears an "xmi.id", and the model's associations and
// generalizations. A value: every operation gives a new dictionary.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "runtime/StringUtils.h"
#include "xmi/DictionaryKey.h"
#include "xmi/XMLElement.h"

using Associations = _eSet<_eHndl<FCAssociationElement>>;
using Generalizations = _eSet<_eHndl<FCGeneralizationElement>>;

// The members of a set of relationships by the class ids they name, built on first use, so
// that asking for the relationships of every class costs one pass over the set, not one per
// class. A copy starts empty: a dictionary made from another never reads the other's index.
template <class Element>
class ClassIdIndex {
public:
    using Members = _eSet<_eHndl<Element>>;

    ClassIdIndex() = default;
    ClassIdIndex(const ClassIdIndex&) {}
    ClassIdIndex& operator=(const ClassIdIndex&) {
        built = false;
        byId.clear();
        return *this;
    }

    // The members of `all` for which `idsOf` names `classId`, in the order of `all`.
    template <class IdsOf>
    Members membersOf(const _eString& classId, const Members& all, IdsOf idsOf) {
        if (!built) build(all, idsOf);
        auto found = byId.find(classId);
        return found == byId.end() ? Members() : found->second;
    }

private:
    template <class IdsOf>
    void build(const Members& all, IdsOf idsOf) {
        for (int i = 0, n = all.size(); i < n; ++i) {
            const _eHndl<Element>& member = all.elements().get(i);
            Names ids = idsOf(*member);
            for (int k = 0, m = ids.size(); k < m; ++k) byId[ids.elements().get(k)].add(member);
        }
        built = true;
    }

    bool built = false;
    StringMap<Members> byId;
};

// What the gathering of a tree's ids knows of an id: its element while it is entered, and
// whether it was found twice.
struct GatheredId {
    const XMLElement* element;  // null once dropped
    bool duplicate;
};
using GatheredIds = KeyMap<GatheredId>;

// The entries by id in a hash table, built on the first lookup, or shared with the gathering
// that made them: a lookup then costs one hash of the id instead of a search that compares
// strings through their trees. A copy starts empty, as the indexes above do.
class EntryIndex {
public:
    EntryIndex() = default;
    // The ids of a gathering: the entries are those with an element.
    explicit EntryIndex(std::shared_ptr<const GatheredIds> gathered) : byId(std::move(gathered)) {}
    EntryIndex(const EntryIndex&) {}
    EntryIndex& operator=(const EntryIndex&) {
        byId.reset();
        return *this;
    }

    bool isBuilt() const { return byId != nullptr; }
    void build(const ClassMap& entries) {
        auto made = std::make_shared<GatheredIds>();
        const auto& all = entries.elements();
        made->reserve(std::size_t(all.size()));
        for (int i = 0, n = all.size(); i < n; ++i)
            made->emplace(DictionaryKey(all.get(i).first), GatheredId{all.get(i).second.get(), false});
        byId = std::move(made);
    }
    // The element of `id`, or null; the index is built.
    _eFrom<XMLElement> find(const _eString& id) const {
        auto found = byId->find(id);
        // The entries hold their elements.
        return found == byId->end() ? _eFrom<XMLElement>() : const_cast<XMLElement*>(found->second.element);
    }

private:
    std::shared_ptr<const GatheredIds> byId;
};

class XMLDictionary : public _eClass<XMLDictionary, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule18, 0};

    XMLDictionary() = default;
    XMLDictionary(const ClassMap& entries, const Names& duplicateIds, const Associations& associations,
                  const Generalizations& generalizations)
        : entries(entries),
          duplicateIds(duplicateIds),
          associations(associations),
          generalizations(generalizations),
          pendingIds(entriesAmong(entries, duplicateIds)) {}
    // The dictionary of the ids a gathering found, `duplicateIds` among them: its entries are
    // those with an element, made a map only when one is asked for (a lookup asks the ids).
    XMLDictionary(std::shared_ptr<const GatheredIds> gathered, const Names& duplicateIds,
                  const Associations& associations, const Generalizations& generalizations);

    // The one dictionary without entries.
    static const _eHndl<XMLDictionary>& empty();

    bool equalFields(const XMLDictionary& other) const {
        return getEntries() == other.getEntries() && duplicateIds == other.duplicateIds &&
               associations == other.associations && generalizations == other.generalizations;
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

    const ClassMap& getEntries() const;
    const Names& getDuplicateIds() const { return duplicateIds; }
    const Associations& getAssociations() const { return associations; }
    const Generalizations& getGeneralizations() const { return generalizations; }

private:
    // The ids of `ids` that `entries` holds, found from the smaller side.
    static Names entriesAmong(const ClassMap& entries, const Names& ids);
    // Entries and duplicates taken together: the work of a merge goes by the smaller weight.
    int weight() const { return getEntries().size() + duplicateIds.size(); }

    mutable ClassMap entries;  // id to element; made from `unmade` when that is set
    // The gathered ids the entries are still to be made of: a copy shares them.
    mutable std::shared_ptr<const GatheredIds> unmade;
    Names duplicateIds;
    Associations associations;
    Generalizations generalizations;
    // The duplicate ids that still have an entry (an element and one of its descendants share
    // the id); the next merge drops them.
    Names pendingIds;
    mutable ClassIdIndex<FCAssociationElement> associationIndex;
    mutable ClassIdIndex<FCGeneralizationElement> generalizationIndex;
    mutable EntryIndex entryIndex;
};

// The ids of a tree gathered in one pass, in the order its elements are left (children before
// their parent), to the same dictionary that folding the children's dictionaries with `merge`
// and then `add`ing each element's own id gives. An id found twice is dropped for good. Only
// one thing of the fold is not a count: when an element's own id is already entered below it,
// the id is marked but stays entered until the next merge, and the fold merges again above an
// element unless it is its parent's only child. So the root and the line of only children below
// it (left last, deepest first) add their ids as the fold does; every other element only counts.
class DictionaryGathering {
public:
    // Entering an element, and leaving it with its own id, if any: added as the fold adds where
    // `adds`, else counted.
    void enter();
    void leave(const XMLElement& element, const DictionaryKey* id, bool adds);
    // As a dictionary, its entries and marks in the order of their ids; the gathering is spent.
    _eHndl<XMLDictionary> dictionary() &&;

private:
    // The associations and generalizations of an element's subtree, each a set in the order of
    // its unions: every member ranks the same, so a set's union appends those of the smaller
    // side that the larger lacks, behind the larger side's. They are joined as the fold joins
    // them, each child's into those of the children before it.
    struct Relations {
        std::vector<FCAssociationElement*> associations;
        std::vector<FCGeneralizationElement*> generalizations;
    };
    // Joins the relations of the element's subtree, the element's own among them where it has an
    // id, into those of its parent.
    void relate(const XMLElement& element, bool related);
    // Adds `member` to `set` unless an equal one is there. Equal elements begin at the same
    // place, so only a member whose place another related element shares is compared.
    template <class Element>
    void addUnlessThere(std::vector<Element*>& set, Element* member) const;
    // The union of `from` into `into`, as a set's union makes it.
    template <class Element>
    void join(std::vector<Element*>& into, std::vector<Element*>& from) const;

    GatheredIds ids;
    // Of the elements entered and not yet left; none yet for most.
    std::vector<std::optional<Relations>> open;
    Relations all;  // of the element left last
    // How many related elements begin at each line and column.
    std::unordered_map<std::uint64_t, int> relatedAt;
};
