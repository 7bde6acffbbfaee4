#include "output/ReservedWords.h"

#include <string_view>
#include <unordered_set>

#include "runtime/StringUtils.h"

namespace {

constexpr const wchar_t* all[] = {
    L"abstract", L"absurd", L"after", L"any", L"anything", L"as", L"assert", L"axiom", L"bag",
    L"begin", L"bool", L"build", L"byte", L"catch", L"change", L"char", L"class", L"confined",
    L"const", L"decrease", L"deferred", L"define", L"done", L"early", L"end", L"enum", L"exists",
    L"external", L"false", L"fi", L"final", L"float", L"for", L"forall", L"from", L"function",
    L"ghost", L"goto", L"has", L"heap", L"highest", L"if", L"import", L"in", L"inherits", L"int",
    L"interface", L"internal", L"invariant", L"is", L"it", L"keep", L"let", L"like", L"limited",
    L"loop", L"lowest", L"map", L"name", L"nonmember", L"null", L"of", L"on", L"opaque",
    L"operator", L"out", L"over", L"pair", L"par", L"pass", L"post", L"pre", L"proof", L"property",
    L"public", L"rank", L"real", L"redefine", L"ref", L"repeated", L"require", L"result",
    L"satisfy", L"schema", L"selector", L"self", L"seq", L"set", L"storable", L"super", L"supports",
    L"tag", L"that", L"then", L"those", L"throw", L"total", L"triple", L"true", L"try", L"until",
    L"value", L"via", L"void", L"when", L"within",
};

// The words by their units, for the test every name written goes through: a hash of the name
// rather than a search that compares it with a word at each step.
struct WordTable {
    std::unordered_set<std::wstring_view> words;
    std::size_t longest = 0;

    WordTable() {
        for (const wchar_t* w : all) {
            std::wstring_view word(w);
            words.insert(word);
            if (word.size() > longest) longest = word.size();
        }
    }
    bool contains(const _eString& name) const {
        if (std::size_t(name.size()) > longest) return false;
        return words.count(TextView(name).text()) != 0;
    }
};

}  // namespace

const _eSet<_eString>& reservedWords() {
    static const _eSet<_eString> words = [] {
        _eSet<_eString> set;
        for (const wchar_t* w : all) set.add(w);
        return set;
    }();
    return words;
}

_eString escapeReservedWord(const _eString& name) {
    static const WordTable table;
    return table.contains(name) ? name + L"_" : name;
}
