#!/usr/bin/env bash
# How many small faults in the core rules the test suite catches. Each mutation below is put
# into a copy of the tree on its own (one text replaced by another, in one file), the copy is
# rebuilt and the whole suite run; a mutant is killed when some test fails. The tree itself is
# never touched. Not part of CI: a run takes about half an hour on two cores.
#
#   tools/mutants.sh [WORKDIR] [NUMBER ...]
#   tools/mutants.sh --check
#
# WORKDIR (default: $TMPDIR/modelbridge-mutants) holds the copy and its build; NUMBERs pick
# mutants from the list (default: all). Uses ccache when it is there, so that undoing a
# mutation costs little. Exit status: 0 when every mutant was built and judged.
#
# --check builds nothing: it only makes sure that every mutation still finds its text exactly
# once in the tree as it is, so that the list keeps up with the code it mutates (CI runs it).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
work=${1:-${TMPDIR:-/tmp}/modelbridge-mutants}
shift || true
picked=" $* "
src="$work/src"
build="$work/build"
jobs=$(nproc)

# Each mutant: "@ FILE | WHAT", then "- TEXT" found exactly once in FILE, then "+ TEXT" for it.
mutations() {
    cat <<'EOF'
@ xmi/ClassRenderer.cpp | multiplicity: 0..1 no longer optional when the lower bound is 0
- if (upper == 1 && lower == 0)
+ if (upper == 1 && lower == 1)
@ xmi/ClassRenderer.cpp | multiplicity: a lower bound of 1 doesn't constrain the set
- if (lower > 0)
+ if (lower > 1)
@ xmi/ClassRenderer.cpp | multiplicity: the digit 9 isn't a digit of a bound
- if (c < L'0' || c > L'9') return -1;
+ if (c < L'0' || c > L'8') return -1;
@ xmi/ClassRenderer.cpp | multiplicity: a huge bound isn't capped at the largest 32-bit number
- value = std::min<std::int64_t>(value * 10 + (c - L'0'), INT32_MAX);
+ value = value * 10 + (c - L'0');
@ xmi/ClassRenderer.cpp | multiplicity: blanks around a bound aren't trimmed
- _eString text = trimSpaces(*bound);
+ _eString text = *bound;
@ xmi/ClassRenderer.cpp | sections: protected members go to the interface
- if (visibility == Visibility::protected_) return Section::confinedPart;
+ if (visibility == Visibility::protected_) return Section::interfacePart;
@ xmi/ClassRenderer.cpp | sections: a private member gets an accessor among the state
- return face == Section::abstractPart
+ return false
@ xmi/ClassRenderer.cpp | sections: confined before abstract
- head += headed(id, L"abstract", abstractPart) + headed(id, L"confined", confinedPart);
+ head += headed(id, L"confined", confinedPart) + headed(id, L"abstract", abstractPart);
@ xmi/ClassRenderer.cpp | sections: an empty interface is headed when only confined members exist
- Output interfaceOut = abstractPart.isEmpty() && confinedPart.isEmpty()
+ Output interfaceOut = abstractPart.isEmpty()
@ xmi/ClassRenderer.cpp | schema marker: given when any parameter is "in"
- bool allIn = std::all_of(
+ bool allIn = std::any_of(
@ xmi/ClassRenderer.cpp | schema marker: given exactly when it shouldn't be
- body = (allIn ? tokens({L"schema", L"!", modelName(name)}) : tokens({L"schema", modelName(name)})) +
+ body = (allIn ? tokens({L"schema", modelName(name)}) : tokens({L"schema", L"!", modelName(name)})) +
@ xmi/ClassRenderer.cpp | schema: an abstract schema gets a postcondition
- parameterList(parameters, false) + (abstract ? none() : tokens({L"post", bodyToComplete()}));
+ parameterList(parameters, false) + (tokens({L"post", bodyToComplete()}));
@ xmi/ClassRenderer.cpp | operator forms: one operand read as infix
- if (parameters.size() == 1) return tokens({L"operator", modelName(name)})
+ if (parameters.size() == 2) return tokens({L"operator", modelName(name)})
@ xmi/ClassRenderer.cpp | operator forms: an infix operator's left operand takes two parameters
- first(parameters.begin(), parameters.begin() + 1);
+ first(parameters.begin(), parameters.begin() + std::min<std::size_t>(2, parameters.size() - 1));
@ xmi/ClassRenderer.cpp | operator forms: a name starting with "_" is an operator symbol
- return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_';
+ return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
@ xmi/ClassRenderer.cpp | parameter modes: "out" loses its keyword
- mode = tokens({L"!", L":", L"out"});
+ mode = tokens({L"!", L":"});
@ xmi/ClassRenderer.cpp | types: "boolean" stays as written
- if (textIs(text, L"boolean")) return L"bool";
+ if (textIs(text, L"Boolean")) return L"bool";
@ xmi/ClassRenderer.cpp | literals: a long suffix is kept
- if ((last == L'L' || last == L'l') && isInteger(value.take(n - 1)))
+ if (last == L'L' && isInteger(value.take(n - 1)))
@ output/TarvaneElements.cpp | blank lines: one after every closer, however deep
- else if (closes && indent < 2)
+ else if (closes)
@ output/TarvaneElements.cpp | blank lines: never written
- lead = leads.lineAt(levels, blankLinePending);
+ lead = leads.lineAt(levels, false);
@ output/TarvaneElements.cpp | layout breaks: a line exactly as wide as allowed is broken
- column + separator.size() + current.size() > options.getLineWidth()
+ column + separator.size() + current.size() >= options.getLineWidth()
@ output/TarvaneElements.cpp | layout breaks: a continued line is indented one level too deep
- std::int32_t continued = indent + 1;
+ std::int32_t continued = indent + 2;
@ output/TarvaneElements.cpp | layout breaks: section heads aren't outdented
- isSectionHead(current) ? indent - 1 : indent;
+ isSectionHead(current) ? indent : indent;
@ output/TarvaneElements.cpp | layout breaks: comments are cut at the margin, not at a blank
- return lastBlank > 0 ? lastBlank : room;
+ return room;
@ output/TarvaneElements.cpp | layout breaks: "end ;" goes on two lines
- if ((before & closer) && !textIs(current, L";")) return lineEnd;
+ if (before & closer) return lineEnd;
@ output/TarvaneElements.cpp | layout: a blank after "("
- setOf({L"!", L"(", L".", L"[", L"{"});
+ setOf({L"!", L".", L"[", L"{"});
@ output/ReservedWords.cpp | reserved words: never escaped
- return table.contains(name) ? name + L"_" : name;
+ return name;
@ output/ReservedWords.cpp | reserved words: "result" isn't one
- L"redefine", L"ref", L"repeated", L"require", L"result",
+ L"redefine", L"ref", L"repeated", L"require",
@ xmi/ClassRenderer.cpp | reserved words: names read from elements aren't escaped
- pieces.pushBack(escape ? escapeReservedWord(trimmed) : trimmed);
+ pieces.pushBack(trimmed);
@ xmi/XMLDictionary.cpp | dictionary merge: an id on both sides isn't dropped
- dropped.add(id);
+ (void)id;
@ xmi/XMLDictionary.cpp | dictionary merge: an id seen twice in one subtree stays
- bool entered = getEntries().containsKey(id);
+ bool entered = false && getEntries().containsKey(id);
@ xmi/XMLDictionary.cpp | dictionary merge: a dropped id entered again by an ancestor stays
- if (result->duplicateIds.contains(id)) result->pendingIds.add(id);
+ if (false) result->pendingIds.add(id);
@ xmi/XMLDictionary.cpp | dictionary merge: the other side's duplicates don't remove an entry
- if (largeEntries.containsKey(smallDuplicates.get(i))) gone.add(smallDuplicates.get(i));
+ if (false) gone.add(smallDuplicates.get(i));
@ xmi/XMLDictionary.cpp | dictionary: an id counted twice isn't dropped
- if (!entered) at->second = {nullptr, true};
+ if (!entered) at->second.duplicate = true;
@ xmi/XMLDictionary.cpp | dictionary: an id of the root's line entered below isn't marked
- if (!entered && at->second.element != nullptr)
+ if (false)
@ xmi/XMLDictionary.cpp | dictionary: a dropped id isn't entered again by the root's line
- at->second.element = &element;
+ (void)element;
@ xmi/XMLDictionary.cpp | dictionary: the generalizations of a child after the first are lost
- join(into->generalizations, own->generalizations);
+ (void)own;
@ xml/XMLcontent.cpp | id path: two name elements read as one
- if (int found = countNamed(first, child); found != 1) return missingOrDuplicate(first, found);
+ if (int found = countNamed(first, child); found == 0) return missingOrDuplicate(first, found);
@ xml/XMLcontent.cpp | id path: a path stops one step early
- if (children.isEmpty() || step + 1 == end) return children;
+ if (children.isEmpty() || step + 2 >= end) return children;
@ xml/XMLcontent.cpp | id path: a reference by xmi.idref isn't followed
- if (candidate->hasAttribute(L"xmi.idref")) return
+ if (false) return
@ xmi/XMLElement.cpp | id path: a type among several type elements is read
- if (count != 1) return unresolvedType;
+ if (count != 1) return child->referencedType(context);
@ runtime/Btree_2.h | B-tree split: a full leaf spills the wrong element
- overflow = new _eLeafNode(elements.data[n - 1]);
+ overflow = new _eLeafNode(elements.data[n - 2]);
@ runtime/Btree_2.h | B-tree concat: the right leaf keeps one element too many
- rest->dropFront(take);
+ rest->dropFront(take - 1);
@ runtime/Btree_2.h | B-tree split: a full branch miscounts what it keeps
- total -= children.data[n - 1]->size();
+ total -= 0;
@ runtime/Btree_2.h | B-tree: a position on a boundary belongs to the earlier child
- if (pos < c) break;
+ if (pos <= c) break;
@ Generated/ParseTables.h | table lookup: a packed slot answers for whichever row it holds
- if (data->check[slot] != std::uint32_t(state)) return {0, ActionName::error, 0};
+ if (data->check[slot] == 0xFFFF) return {0, ActionName::error, 0};
@ tools/lalrgen.cpp | table packing: a row may be placed over the slots of state 0
- if (slot < p.check.size() && p.check[slot] >= 0) return false;
+ if (slot < p.check.size() && p.check[slot] > 0) return false;
@ Generated/Parser.cpp | table lookup: runs of bytes with different actions are taken as one
- if (!action || (any && *action != run->semanticAction)) continue;
+ if (!action) continue;
@ Generated/Parser.h | table lookup: known runs are found by state alone
- if (k.below == below) return k.bytes.get();
+ return k.bytes.get();
@ Generated/Parser.cpp | following the tables: a token is shifted where only its reductions were asked for
- if (untilShift) return true;
+ if (untilShift && steps < 0) return true;
@ Generated/XMLParser.cpp | attributes read whole: where the tables run other actions for them
- if (!whole.ok || !end.ok || end.at != done || whole.ran != expected) return nullptr;
+ if (!whole.ok || !end.ok) return nullptr;
@ Generated/XMLParser.cpp | attributes read whole: a value loses its last byte
- value->shareElements(bytes + equals + 2, length);
+ value->shareElements(bytes + equals + 2, length > 0 ? length - 1 : 0);
@ Generated/XMLParser.cpp | attributes read whole: the blank's state stays
- state = stack.peek(-1).state;
+ state = stack.peek(-2).state;
@ Generated/XMLParser.cpp | names read whole: the lexer stays on the last byte of a name of two
- if (end > 1) lexer.take(end - 1);
+ if (end > 2) lexer.take(end - 1);
@ Generated/XMLParser.cpp | end tags read whole: where the tables run other actions for them
- if (!whole.ok || whole.at != *done || whole.at.below != std::vector{below[3]} || whole.ran != expected)
+ if (!whole.ok)
@ Generated/XMLParser.cpp | end tags read whole: the end tag is placed where its start tag is
- _eHndl<XMLETag> endTag(new XMLETag(open, sharedName(bytes + 1, length)));
+ _eHndl<XMLETag> endTag(new XMLETag(stack.peek(-3).value->getPosition(), sharedName(bytes + 1, length)));
@ Generated/XMLParser.cpp | end tags read whole: the lexer stays on the ">"
- lexer.take(length + 2);  // the "/", the name and the ">"
+ lexer.take(length + 1);
@ Generated/XMLParser.cpp | end tags read whole: a name may begin with any byte of a name
- std::int32_t length = nameLength(can->first, can->rest, bytes + 1, count - 1);
+ std::int32_t length = nameLength(can->rest, can->rest, bytes + 1, count - 1);
@ Generated/XMLParser.cpp | tags read whole: an attribute may follow a value with no blank between
- if (!blank || attributes == room) return false;
+ if (attributes == room) return false;
@ Generated/XMLParser.cpp | tags read whole: where the tables leave an empty element out of its content
- {trailing ? A::emptyTagWithSpace : A::emptyTag, A::emptyElement, A::contentElement});
+ {trailing ? A::emptyTagWithSpace : A::emptyTag, A::emptyElement});
@ Generated/XMLParser.cpp | tags read whole: the lexer stays on the ">" of "/>"
- const std::int32_t end = empty ? at + 1 : at;
+ const std::int32_t end = at;
@ Generated/XMLParser.cpp | tags read whole: a value is placed at its "="
- _eHndl<XMLAttributeValue> value(new XMLAttributeValue(placeOf(span.equals + 1)));
+ _eHndl<XMLAttributeValue> value(new XMLAttributeValue(placeOf(span.equals)));
@ Generated/XMLParser.cpp | tags read whole: places counted back from the end across a tab
- const bool tabbed = std::memchr(bytes, '\t', std::size_t(end + 1)) != nullptr;
+ const bool tabbed = false;
@ Generated/XMLParser.cpp | tags read whole: a line end may stand for a blank
- bytes->blank[10] = bytes->value[0][10] = bytes->value[1][10] = false;
+ bytes->value[0][10] = bytes->value[1][10] = false;
@ Generated/XMLParser.cpp | a tag's "<" read without its token even where lines are shown
- if (stopAtLineEnd) return;
+ if (false) return;
@ Generated/XMLParser.cpp | a tag's "<" read without its token: the text before it is left out of the content
- static_cast<XMLcontent*>(stack.peekToChange(-2).value.uniquePointer())->addItem(text);
+ (void)text;
@ Generated/XMLParser.cpp | references read whole: the name is taken with its ";"
- reference = entityReference(open, sharedName(bytes, length));
+ reference = entityReference(open, sharedName(bytes, length + 1));
@ Generated/XMLParser.cpp | references read whole: where the tables add them by another action
- if (addedBy != A::contentReference && addedBy != A::attributeValueReference) return nullptr;
+ if (addedBy == 0) return nullptr;
@ Generated/XMLParser.cpp | references read whole: the ";" is left to be read
- lexer.take(length + 1);  // the name and the ";"
+ lexer.take(length);  // the name and the ";"
@ Generated/XMLParser.cpp | character references read whole: a hexadecimal code read in decimal
- code = code * (hexadecimal ? 16u : 10u) + std::uint32_t(digitValue(wchar_t(bytes[k])));
+ code = code * 10u + std::uint32_t(digitValue(wchar_t(bytes[k])));
@ Generated/XMLParser.cpp | character references read whole: a decimal code may hold hexadecimal digits
- const ByteSet& digits = can->digits[hexadecimal ? 1 : 0];
+ const ByteSet& digits = can->digits[1];
@ Generated/XMLParser.cpp | text after a tag: the content made where its tag ends
- stack.push({state, _eHndl<StackValue>(new XMLcontent(at))});
+ stack.push({state, _eHndl<StackValue>(new XMLcontent(stack.peek(-1).value->getPosition()))});
@ Generated/Location.cpp | lexer positions: a tab goes one column past its stop
- std::int32_t c = column + width - 1;
+ std::int32_t c = column + width;
@ xml/XMLLex.cpp | lexer positions: a run goes over line ends
- while (taken < available && member[bytes[taken]] && bytes[taken] != 10) ++taken;
+ while (taken < available && member[bytes[taken]]) ++taken;
@ xml/XMLLex.cpp | lexer positions: after a run the last byte is its first
- currentChar = bytes[taken - 1];
+ currentChar = bytes[0];
@ Generated/Location.cpp | lexer positions: tabs in a run count one column
- if (std::memchr(lineStart, 9, std::size_t(end - lineStart)) == nullptr) {
+ if (true) {
@ xml/XMLLex.cpp | lexer: a carriage return isn't white space
- if (c == 9 || c == 10 || c == 13 || c == 32)
+ if (c == 9 || c == 10 || c == 32)
@ Generated/Location.cpp | diagnostics order: later lines first
- if (line != that->line) return line < that->line ? rankBelow : rankAbove;
+ if (line != that->line) return line < that->line ? rankAbove : rankBelow;
@ Generated/Location.cpp | diagnostics order: errors without a file last
- return file.isNull() ? rankBelow : rankAbove;
+ return file.isNull() ? rankAbove : rankBelow;
@ Generated/Location.cpp | positions: a file named before, after another, takes a new number
- if (kept.files[at->second - 1] == file) return at->second;
+ if (false) return at->second;
@ Generated/XMLError.cpp | diagnostics order: errors ordered without their locations
- return byLocation != rankSame ? byLocation : defaultRank(other);
+ return defaultRank(other);
@ Generated/XMLImporter.cpp | diagnostics: the first error stands for the most severe
- if (state->errors.at(i)->severity() == worst) return
+ if (state->errors.at(i)->severity() >= ErrorSeverity::inform) return
@ output/MemberMerge.cpp | merge: a declaration only the user changed takes the model's text
- if (theirs == baseText) return emit(ours);
+ if (theirs == baseText) return emit(theirs);
@ output/MemberMerge.cpp | merge: the user's bodies aren't carried into a renamed declaration
- if (bodies[b] != "?") next.replace((*nextOffsets)[b], 1, bodies[b]);
+ if (bodies[b] == "?") next.replace((*nextOffsets)[b], 1, bodies[b]);
@ output/MemberMerge.cpp | merge: lines added before a deleted unit are dropped
- to.insert(to.begin(), moved.begin(), moved.end());
+ to.clear();
@ output/LineDiff.cpp | three-way merge: a change both sides made alike is a conflict
- if (o == b || o == t) {
+ if (o == b) {
@ output/GenerationRecord.cpp | record: a name with a separator is taken for a plain file name
- if (c == '/' || (unsigned char)c < 0x20 || c == 0x7f) return false;
+ if ((unsigned char)c < 0x20 || c == 0x7f) return false;
@ output/FolderUpdate.cpp | update: a file the user never changed is merged as if they had
- if (same(body, last->file) && last->kept.empty()) {
+ if (same(body, last->file) && !last->kept.empty()) {
@ xmi/ClassRenderer.cpp | an interface's operations keep their own abstractness
- deferred.isAbstract = true;
+ deferred.isAbstract = member.isAbstract;
@ xmi/ClassRenderer.cpp | a realised interface no longer follows the parents in the inherits list
- for (const GeneralizationRecord& realization : record.realizations) supertypes.push_back(&realization);
+ for (const GeneralizationRecord& realization : record.realizations) (void)realization;
@ xmi/ClassRenderer.cpp | a line of a note keeps a control character
- lines.back().push_back(c != L'\t' && (c < 0x20 || c == 0x7f) ? L' ' : c);
+ lines.back().push_back(c);
@ xmi/Xmi2Reader.cpp | a tool's own records are read as the model's
- ofModel = ofModel && !open.back().foreign;
+ ofModel = ofModel || open.back().foreign;
@ Generated/XMLImporter.cpp | the layout of generated text is no part of what a file is made from
- std::int32_t numbers[] = {layout.getLineWidth(), layout.getCommentsByKind() ? 1 : 0, state->tabWidth};
+ std::int32_t numbers[] = {0, layout.getCommentsByKind() ? 1 : 0, state->tabWidth};
@ output/FolderUpdate.cpp | a text that looked for other files keeps its source
- if (!sourcesHold())
+ if (false && !sourcesHold())
@ xmi/TypeLibraries.cpp | looking for another file isn't counted
- if (!file.empty()) ++sought;
+ if (file.empty()) ++sought;
@ environment/DirectoryListings.cpp | a listing with fractions of a second waits as long as one without
- return since > settleFineNanoseconds;
+ return since > settleFineNanoseconds * 20;
@ xml/XMLNames.cpp | a name last found is answered for any text of its length
- if (found.text == text) return found.answer;
+ if (found.text.size() == text.size()) return found.answer;
@ xml/XMLLex.cpp | a token held elsewhere is remade all the same
- return !held.isNull() && held->countWord() == 1 && held->retake(tokenAt, code, currentChar);
+ return !held.isNull() && held->retake(tokenAt, code, currentChar);
@ environment/Paths.cpp | a path that ended in a separator loses it
- if (!trailing && out.size() > 1) out.pop_back();
+ if (out.size() > 1) out.pop_back();
@ output/FolderUpdate.cpp | an update compares a file's first lines only
- return std::equal(body.begin(), body.end(), lines.begin(), lines.end());
+ return std::equal(body.begin(), body.begin() + long(std::min(body.size(), lines.size())), lines.begin());
@ xml/CompactText.cpp | a unit above a byte is kept in one byte all the same
- if (static_cast<std::uint32_t>(all) < 256) {
+ if (static_cast<std::uint32_t>(all) < 65536) {
@ environment/PlatformText.h | a unit of three bytes is counted as two where a line's bytes are counted
- return unit < 256 ? 1 : unit < 0x800 ? 2 : unit < 0x10000 ? 3 : 4;
+ return unit < 256 ? 1 : unit < 0x800 ? 2 : unit < 0x10000 ? 2 : 4;
@ environment/Paths.cpp | a path the spelling left unchanged is given back as it came, whatever its units
- return isAscii(text) && result == text ? path : fromPlatformText(result);
+ return result == text ? path : fromPlatformText(result);
@ xmi/XMLElement.cpp | every element of the dictionary only counts its id, the root's line too
- bool onLine = &element == line.back();
+ bool onLine = false;
@ xml/XMLcontent.cpp | counting at a path keeps the first of the last subtree with matches
- if (first == nullptr) first = below;
+ if (below != nullptr) first = below;
@ xmi/XMLDictionary.cpp | the dictionary's entries are left in the order of the hash table
- return rankStrings(a.first, b.first) == rankBelow;
+ return false;
@ output/FolderUpdate.cpp | read ahead: each file settled with the bytes read for another
- steps.push_back(settle(*files[i], planned[i].header, ahead[i]));
+ steps.push_back(settle(*files[i], planned[i].header, ahead[files.size() - 1 - i]));
@ output/FolderUpdate.cpp | read ahead: a renamed class's file read under its new name
- readFile(source == file.name ? std::move(ahead) : readNow(source)
+ readFile(std::move(ahead)
@ output/TextBatch.cpp | a full batch's units are written over instead of going out first
- if (used == capacity) flush();
+ if (used == capacity) used = 0;
@ output/TextBatch.cpp | a later failure replaces the first
- if (status == FileError::success) status = written;
+ if (written != FileError::success) status = written;
@ runtime/Set.h | a string set's match is not where the string is
- case rankSame: return {mid, mid + 1};
+ case rankSame: return {lo, mid + 1};
@ output/TarvaneElements.cpp | a token's word sets are taken from whatever its slot kept
- if (token.rootNode() != slot.token.rootNode()) slot = {token, lookUpWordSets(token)};
+ if (slot.token.isEmpty()) slot = {token, lookUpWordSets(token)};
@ environment/DirectoryListings.cpp | a kept listing answers though the directory changed since
- if (!stampOf(directory, now) || !(now == found->second.stamp)) return std::nullopt;
+ if (!stampOf(directory, now)) return std::nullopt;
@ environment/DirectoryListings.cpp | a kept listing answers for a name that several entries share
- if (entry->second != 1) return std::nullopt;
+ if (entry->second < 1) return std::nullopt;
@ output/OutputFolder.cpp | a name whose read fails for any reason counts as nothing there
- there = reason != ENOENT && holdsAnything(name);
+ there = false;
@ xmi/XMLDictionary.cpp | a relationship equal to one gathered already is kept twice
- if (relatedAt.find(placeOf(*member))->second > 1)
+ if (false)
@ xmi/XMLDictionary.cpp | the union of two sides of one size keeps the wrong side's order
- if (from.size() >= into.size()) into.swap(from);
+ if (from.size() > into.size()) into.swap(from);
@ xmi/ClassRenderer.cpp | the placeholders of a joined stretch go uncounted
- unknown += other.unknown;
+ unknown += 0;
@ xmi/ModelAnnotations.cpp | a comment without text is taken in
- if (trimSpaces(text).isEmpty()) continue;
+ if (false) continue;
@ xml/XMLcontent.cpp | an element's text keeps the blanks at its end
- return _eString(std::wstring_view(all).substr(from, all.find_last_not_of(L' ') + 1 - from));
+ return _eString(std::wstring_view(all).substr(from));
@ xml/CompactText.cpp | bytes appended to a text held as a string are lost
- appendWidened(wide(), units, std::uint32_t(count));
+ (void)wide();
@ xml/CompactText.h | a short text given no string is held as the empty one
- if (made.isEmpty()) return false;
+ if (false) return false;
@ xmi/XMLElement.cpp | an element is made by the maker of the last tag in its slot, whatever its name
- if (slot.maker == nullptr || slot.canonical.rootNode() != canonical.rootNode()) {
+ if (slot.maker == nullptr) {
@ Generated/Location.h | a line end among a few bytes taken at once moves the column
- for (std::int32_t i = 0; i < count; ++i) plain &= bytes[i] != 9 && bytes[i] != 10;
+ for (std::int32_t i = 0; i < count; ++i) plain &= bytes[i] != 9;
@ xml/CompactText.h | a short value made from its units at once is never kept as a shared string
- if (holdMade(widened, count, make)) return;
+ if (count < 0 && holdMade(widened, count, make)) return;
@ xml/XMLNames.cpp | the table of short texts makes strings past its room
- return lookUpUnits(kept, text, nullptr, [&] { return int(kept.kept.size()) < capacity ? _eString(text) : _eString(); });
+ return lookUpUnits(kept, text, nullptr, [&] { return _eString(text); });
@ runtime/Map.h | a name put again is put twice
- if (index != end) return false;
+ if (false) return false;
@ Generated/XMLParser.cpp | a character reference in content is never decoded
- if (!extensions.decodeReferences || typeid(held) != typeid(XMLCharReference)) return item;
+ if (true) return item;
@ xmi/XMLDictionary.cpp | a gathered dictionary forgets the marked ids it still holds
- pendingIds(idsWhere(*gathered, [](const GatheredId& slot) { return slot.element != nullptr && slot.duplicate; })),
+ pendingIds(idsWhere(*gathered, [](const GatheredId& slot) { return false && slot.duplicate; })),
@ xmi/DictionaryKey.h | an id held in bytes never equals the same id as a string
- return n == m && std::equal(x, x + n, y, [](auto p, auto q) { return std::uint32_t(p) == std::uint32_t(q); });
+ return n == m && sizeof(*x) == sizeof(*y) && std::equal(x, x + n, y, [](auto p, auto q) { return std::uint32_t(p) == std::uint32_t(q); });
@ xml/XMLNames.cpp | a derived name is kept by what it was derived to, not by the name asked
- key = asked != nullptr ? *asked : answer;
+ key = answer;
@ runtime/StringUtils.cpp | trimming hands back a text blank at one end as it stands
- if (from == 0 && to == text.size()) return text;
+ if (from == 0 || to == text.size()) return text;
@ output/TarvaneElements.cpp | a comment is never cut at a blank just before the room
- for (std::int32_t i = 3; i < limit; ++i)
+ for (std::int32_t i = 3; i < limit - 1; ++i)
@ xml/XMLValues.h | a parameter entity reference adds nothing to an entity value
- virtual void addPEReference(const _eHndl<XMLPEReference>& reference) { addTextOf(*reference); }
+ virtual void addPEReference(const _eHndl<XMLPEReference>&) {}
@ xml/XMLReferences.h | a character reference is not cut to 16 bits in a value
- out.append(&character, 1);
+ out.append(&character, code > 0xFFFF ? 0 : 1);
@ runtime/StringUtils.cpp | a text of several leaves: only the first unit of each leaf compared
- if (std::wmemcmp(units, word.data() + at, n) != 0) return false;
+ if (units[0] != word[at]) return false;
@ runtime/Pool.h | a block asked for zeroed comes as it was left
- std::memset(block, 0, size);
+ (void)size;
@ xml/CompactText.cpp | a first buffer of text starts with whatever size its block held
- moved->size = 0;
+ (void)moved;
@ output/OutputFolder.cpp | a file read whole keeps the byte of room after its text
- text.resize(size);
+ text.resize(size + 1);
@ output/GenerationRecord.cpp | a record taken for the text it begins, whatever follows
- bool matched() const { return !differs && at == against.size(); }
+ bool matched() const { return !differs; }
@ output/FolderUpdate.cpp | a file written again from the record's text before its lines are split
- file.split();  // a text from the record, split only where it is written
+ (void)file;
@ output/FolderUpdate.cpp | a merge given the record's text unsplit, as no lines
- last->file.split();
+ (void)last;
EOF
}

# Replaces the one occurrence of OLD in FILE by NEW; fails when OLD isn't there exactly once.
# Without NEW it only makes sure that OLD is there exactly once.
replace_once() {
    python3 - "$@" <<'PY'
import os, sys
path, old, *new = sys.argv[1:]
if not os.path.isfile(path):
    sys.exit(f"{path}: no such file")
text = open(path, encoding="utf-8").read()
count = text.count(old)
if count != 1:
    sys.exit(f"{path}: the text to change is there {count} times: {old}")
if new:
    open(path, "w", encoding="utf-8").write(text.replace(old, new[0]))
PY
}

run_suite() {
    ctest --test-dir "$build" -j"$jobs" --stop-on-failure --timeout 300 >"$work/ctest.log" 2>&1
}

build_tree() {
    cmake --build "$build" -j"$jobs" >"$work/build.log" 2>&1
}

# Reads the list and calls EACH with the number, file, description, old and new text of every
# mutation.
each_mutation() {
    local each=$1 line number=0 file="" what="" old=""
    while IFS= read -r line; do
        case "$line" in
            "@ "*) file=${line#@ }; what=${file#* | }; file=${file%% | *} ;;
            "- "*) old=${line#- } ;;
            "+ "*) number=$((number + 1)); "$each" "$number" "$file" "$what" "$old" "${line#+ }" ;;
        esac
    done < <(mutations)
}

if [ "$work" = --check ]; then
    stale=0
    check_one() {
        local reason
        if ! reason=$(replace_once "$root/$2" "$4" 2>&1); then
            printf '%3d  %s\n     %s\n' "$1" "$3" "$reason"
            stale=$((stale + 1))
        fi
    }
    each_mutation check_one
    echo "== mutation list: $stale of the mutations no longer find their text exactly once"
    [ "$stale" -eq 0 ]
    exit
fi

echo "== copying the tree into $src"
mkdir -p "$work"
rm -rf "$src"
mkdir -p "$src"
(cd "$root" && git ls-files -z | xargs -0 cp --parents -t "$src")
ln -sfn "$root/../shared" "$work/shared"
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache); fi
cmake -S "$src" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}" >"$work/configure.log"
echo "== building and testing the unchanged tree"
build_tree || { echo "the unchanged tree doesn't build: $work/build.log"; exit 1; }
run_suite || { echo "the unchanged tree fails its tests: $work/ctest.log"; exit 1; }

total=0 killed=0 broken=0
survivors=()
try_one() {
    local number=$1 file=$2 what=$3 old=$4 new=$5 failing
    if [[ "$picked" != "  " && "$picked" != *" $number "* ]]; then return; fi
    total=$((total + 1))
    cp "$src/$file" "$work/original"
    if ! replace_once "$src/$file" "$old" "$new"; then
        broken=$((broken + 1))
        printf '%3d  NOT APPLIED  %s\n' "$number" "$what"
        return
    fi
    if ! build_tree; then
        broken=$((broken + 1))
        printf '%3d  NOT BUILT    %s (%s)\n' "$number" "$what" "$file"
        cp "$work/build.log" "$work/build-$number.log"
    elif run_suite; then
        survivors+=("$number")
        printf '%3d  survived     %s (%s)\n' "$number" "$what" "$file"
    else
        killed=$((killed + 1))
        failing=$(grep -m1 -oE '[0-9]+ - [^ ]+ \((Failed|Timeout|SEGFAULT|Subprocess aborted|Exception)' "$work/ctest.log" | sed 's/^[0-9]* - //; s/$/)/' || true)
        printf '%3d  killed       %s (%s) by %s\n' "$number" "$what" "$file" "${failing:-the suite}"
    fi
    cp "$work/original" "$src/$file"
}
each_mutation try_one

listed=""
if [ "${#survivors[@]}" -gt 0 ]; then listed=" (${survivors[*]})"; fi
echo "== $killed of $total mutants killed; ${#survivors[@]} survived$listed; $broken not applied or not built"
[ "$broken" -eq 0 ]
