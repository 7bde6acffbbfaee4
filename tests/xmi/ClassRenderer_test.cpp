// Class text from records alone, as any reader of a model fills them.
#include <gtest/gtest.h>

#include "xmi/ClassRenderer.h"

namespace {

std::wstring joined(const _eHndl<TarvaneOutput>& out) {
    std::wstring text;
    for (int i = 0; i < out->tokens().size(); ++i) text += (i ? L" " : L"") + toWString(out->tokens().at(i));
    return text;
}

NameRecord attributeName(const wchar_t* text) { return {text, false, true}; }

TypeRecord named(const wchar_t* name) { return {TypeRecord::named, attributeName(name), false}; }

TypeRecord classType(const wchar_t* name, bool leaf) { return {TypeRecord::classType, attributeName(name), leaf}; }

}  // namespace

TEST(ClassRenderer, NamesFromAttributesAndNameElements) {
    struct Row {
        NameRecord name;
        bool escape;
        const wchar_t* text;
        const wchar_t* orUnknown;
        bool hasName;
    };
    const Row rows[] = {
        {{L" my name ", false, true}, true, L"my name", L"my name", true},
        {{L" my name ", true, true}, true, L"my_name", L"my_name", true},
        {{L"value", false, true}, true, L"value_", L"value_", true},
        {{L"value", false, true}, false, L"value", L"value", true},
        {{L"End", false, true}, true, L"End", L"End", true},
        {{L"class, set", true, true}, true, L"class_, set_", L"class_, set_", true},
        {{L"class, set", false, true}, true, L"class, set", L"class, set", true},
        {{L"   ", false, true}, true, L"", L"?", false},
        {{L"?[[Missing Element 'UML:ModelElement.name']]", true, false}, true,
         L"?[[Missing_Element_'UML:ModelElement.name']]", L"?[[Missing_Element_'UML:ModelElement.name']]", false},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        EXPECT_EQ(toWString(ClassRenderer::nameText(row.name, row.escape)), row.text) << "row " << i;
        EXPECT_EQ(toWString(ClassRenderer::nameOrUnknown(row.name, row.escape)), row.orUnknown) << "row " << i;
        EXPECT_EQ(ClassRenderer::hasName(row.name), row.hasName) << "row " << i;
    }
    EXPECT_EQ(toWString(ClassRenderer::typeName(attributeName(L"value"))), L"value");
}

// The rows the element tests don't reach: "ref", bounds that aren't numbers, a bound too large.
TEST(ClassRenderer, TypesAndMultiplicities) {
    struct Row {
        bool single;
        const wchar_t* lower;
        const wchar_t* upper;
        bool isRef;
        const wchar_t* tokens;
    };
    const Row rows[] = {
        {false, L"", L"", true, L"from T"},
        {true, L" 0 ", L"1 ", true, L"ref from T || void"},
        {true, L"1", L"1", true, L"ref from T"},
        {true, L"?", L"?", true, L"set of ref from T"},
        {true, L"2", L"5", true, L"those x : set of ref from T :- # x >= 2"},
        {true, L"99999999999", L"*", false, L"those x : set of from T :- # x >= 2147483647"},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        EXPECT_EQ(joined(ClassRenderer::multiplicityType({row.single, row.lower, row.upper}, classType(L"T", false), row.isRef)),
                  row.tokens)
            << "row " << i;
    }
    EXPECT_EQ(joined(ClassRenderer::typeTokens(TypeRecord())), L"?");
    EXPECT_EQ(joined(ClassRenderer::typeTokens(classType(L"float", true))), L"real");
    EXPECT_EQ(joined(ClassRenderer::typeTokens(named(L"int"))), L"int");
}

// A class of every kind of member: the sections come out in the order abstract, confined,
// interface; features before association members; modifiers and parents at the head.
TEST(ClassRenderer, ClassDeclarationFromRecords) {
    ClassRecord account;
    account.name = attributeName(L"Account");
    account.isAbstract = L"true";
    account.id = L"a1";
    FeatureRecord& limit = account.features.emplace_back();
    limit.attributeRecord = {attributeName(L"limit"), L"protected", L"frozen", L"'x'", named(L"int"), {}};
    FeatureRecord& build = account.features.emplace_back();
    build.kind = FeatureRecord::operation;
    build.operationRecord = {attributeName(L"Account"), L"public", L"true", L"", L"", {{attributeName(L"v"), L"out", named(L"int"), false}}};
    FeatureRecord& total = account.features.emplace_back();
    total.kind = FeatureRecord::operation;
    total.operationRecord = {attributeName(L"total"), L"private", L"", L"true", L"",
                             {{attributeName(L"r"), L"return", named(L"real"), false}, {attributeName(L"q"), L"return", named(L"void"), true}}};
    AssociationEndRecord own;
    own.isNavigable = L"false";
    own.aggregation = L"composite";
    own.typeId = L"a1";
    own.singleType = true;
    AssociationEndRecord far;
    far.visibility = L"public";
    far.isNavigable = L"true";
    far.typeId = L"o1";
    far.singleType = true;
    far.type = classType(L"Order", true);
    far.roleType = named(L"Order");
    far.multiplicity = {true, L"0", L"*"};
    account.associations.push_back({{own, far}});
    account.associations.push_back({{own, far, far}});  // three ends give nothing
    account.parents = {named(L"Base"), TypeRecord()};
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(account)),
              L"deferred class Account ^= inherits Base , ? "
              L"abstract const limit ^= `x` ; final function total_ : real ^= ? ; var myOrder : set of Order ; "
              L"confined function limit ; "
              L"interface build { v : int } post ? ; selector myOrder ; end ;");

    ClassRecord empty;
    empty.name = {L"?[[Missing Element 'UML:ModelElement.name']]", true, false};
    empty.isLeaf = L"true";
    empty.isAbstract = L"true";
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(empty)),
              L"final class ?[[Missing_Element_'UML:ModelElement.name']] ^= interface end ;");
    // Members in the confined part alone: no empty interface follows them.
    FeatureRecord& reset = empty.features.emplace_back();
    reset.kind = FeatureRecord::operation;
    reset.operationRecord = {attributeName(L"reset"), L"protected", L"", L"", L"", {}};
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(empty)),
              L"final class ?[[Missing_Element_'UML:ModelElement.name']] ^= confined schema ! reset post ? ; end ;");
}
