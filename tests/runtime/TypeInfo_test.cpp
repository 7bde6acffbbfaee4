// Type objects: equality and order, matching, lookup by name, and the records of classes.
#include <gtest/gtest.h>

#include "environment/EnvironmentEnums.h"
#include "environment/FileName.h"
#include "runtime/TypeMatcher.h"
#include "support/StreamFailure.h"
#include "support/TestModule.h"
#include "Generated/XMLParser.h"
#include "environment/OsInfo.h"
#include "output/TarvaneSections.h"
#include "runtime/StorageStream.h"
#include "runtime/UrelException.h"
#include "xml/XMLCharData.h"
#include "xml/XMLDocument.h"
#include "xml/XMLLex.h"

namespace {

using Type = _eHndl<_eInstblTypeInfo>;

Type builtIn(int row) { return Type(new _eInstblTypeInfo(row, false)); }

}  // namespace

TEST(TypeInfo, EqualityWeighsArgumentsThatTheOrderIgnores) {
    Type seqOfChar = builtIn(6)->instantiate({builtIn(2)});
    Type again = builtIn(6)->instantiate({builtIn(2)});
    Type seqOfInt = builtIn(6)->instantiate({builtIn(0)});
    EXPECT_TRUE(seqOfChar->isEqual(again.get()));
    EXPECT_FALSE(seqOfChar->isEqual(seqOfInt.get()));
    EXPECT_EQ(seqOfChar->rank(seqOfInt.get()), rankSame);
    EXPECT_TRUE(seqOfChar->isEqual(_eStorableWrapper<_eString>::_aMyTypeInfo().get()));

    // The order: flags first, then the row, then the module.
    Type from(new _eInstblTypeInfo(*builtIn(0)));
    from->setFlags(true, false);
    EXPECT_EQ(from->rank(builtIn(5).get()), rankAbove);
    EXPECT_EQ(builtIn(1)->rank(builtIn(0).get()), rankAbove);
    EXPECT_EQ(builtIn(0)->rank(builtIn(1).get()), rankBelow);
    Type otherModule(new _eInstblTypeInfo(&_aModule27, 0));
    EXPECT_NE(builtIn(0)->rank(otherModule.get()), rankSame);
    EXPECT_EQ(builtIn(0)->rank(otherModule.get()) == rankAbove, otherModule->rank(builtIn(0).get()) == rankBelow);

    // Matching ignores `from` but not `ref`, and looks into the arguments.
    Type seqOfFromChar = builtIn(6)->instantiate({from});
    EXPECT_FALSE(seqOfChar->matches(*seqOfInt));
    Type fromChar(new _eInstblTypeInfo(*builtIn(2)));
    fromChar->setFlags(true, false);
    EXPECT_TRUE(seqOfChar->matches(*builtIn(6)->instantiate({fromChar})));
    Type refChar(new _eInstblTypeInfo(2, true));
    EXPECT_FALSE(seqOfChar->matches(*builtIn(6)->instantiate({refChar})));
    EXPECT_FALSE(seqOfChar->matches(*builtIn(7)->instantiate({builtIn(2)})));
}

TEST(TypeInfo, LookupByNameTakesTheNewestModule) {
    Type location = _eInstblTypeInfo::makeType(L"Location", false, false);
    EXPECT_EQ(location->getModule(), &_aModule7);
    EXPECT_EQ(location->getTypeIndex(), 0);
    // The test module registered after the system's and repeats "FileName" as its row 7.
    Type fileName = _eInstblTypeInfo::makeType(L"FileName", true, false);
    EXPECT_EQ(fileName->getModule(), &testModule);
    EXPECT_EQ(fileName->getTypeIndex(), 7);
    EXPECT_TRUE(fileName->isFrom());

    _eSeq<_eSeparatorId::_eEnum> arrow{_eSeparatorId::RightArrow};
    Type map(new _eInstblTypeInfo(L"map", 2, arrow, false, false));
    EXPECT_EQ(map->getModule(), builtInModule());
    EXPECT_EQ(map->getTypeIndex(), 9);

    EXPECT_EQ(failureOf([] { _eInstblTypeInfo::makeType(L"NoSuchType", false, false); }),
              std::make_pair(int(SerialErrorType::streamError), std::wstring(L"NoSuchType")));
    EXPECT_EQ(failureOf([&] { _eInstblTypeInfo(L"dict", 2, arrow, false, false); }),
              std::make_pair(int(SerialErrorType::streamError), std::wstring(L"dict of (T1RightArrowT2)")));
}

// Every class's type slot names a row of its module's table: the name in that row is the
// class's own, so a slot written with the wrong row number shows here.
TEST(TypeInfo, EveryTypeRowNamesItsClass) {
    std::vector<std::pair<std::wstring, std::wstring>> rows;  // the row's name, the class's
#define MB_ROW(Class, name) rows.push_back({toWString(Class::_aTypeRecord()->info->typeName()), name})
#define MB_SAME(Class) MB_ROW(Class, L## #Class)
    MB_SAME(Context); MB_SAME(ElementBase); MB_SAME(Error); MB_SAME(ErrorInfo); MB_SAME(FileName);
    MB_SAME(XMLParser); MB_SAME(ImportOptions); MB_SAME(Location); MB_SAME(NonTerminal); MB_SAME(ParseControl);
    MB_SAME(Parser); MB_SAME(TarvaneElements); MB_SAME(TarvaneOutput); MB_SAME(StackValue); MB_SAME(Terminal);
    MB_SAME(SimpleTerminal); MB_SAME(ComplexTerminal); MB_SAME(XMLEntityValueElement); MB_SAME(XMLCharValue);
    MB_SAME(XMLReferenceValue); MB_SAME(XMLPEReferenceValue); MB_SAME(XMLContentItem); MB_SAME(XMLString);
    MB_SAME(XMLNumber); MB_SAME(XMLPEReference); MB_SAME(XMLEmptyElemTag); MB_SAME(XMLSTag); MB_SAME(XMLETag);
    MB_SAME(XMLAttribute); MB_SAME(XMLAttributeList); MB_SAME(XMLEntityValue); MB_SAME(XMLReference);
    MB_SAME(XMLEntityReference); MB_SAME(XMLCharReference); MB_SAME(XMLAttributeValue); MB_SAME(XMLCharData);
    MB_SAME(XMLCDSect); MB_SAME(TarvaneSections); MB_SAME(XMLcontent); MB_SAME(XMLDictionary); MB_SAME(XMLDocument);
    MB_SAME(XMLElement); MB_SAME(UnrecognisedElement); MB_SAME(XMIRootElement); MB_SAME(XMIContentElement);
    MB_SAME(Model_ManagementModelElement); MB_SAME(FCNamespaceOwnedElement); MB_SAME(Model_ManagementPackageElement);
    MB_SAME(FCClassElement); MB_SAME(FCClassifierFeatureElement); MB_SAME(FCAttributeElement);
    MB_SAME(FCOperationElement); MB_SAME(FCAssociationElement); MB_SAME(FCGeneralizationElement); MB_SAME(XMLError);
    MB_SAME(XMLLex); MB_SAME(XMLNode); MB_SAME(FilePath); MB_SAME(Time); MB_SAME(OsInfo); MB_SAME(FileStats);
    MB_SAME(Environment); MB_SAME(FileRef); MB_SAME(StorageStream); MB_SAME(StoreStream); MB_SAME(FillStream);
    MB_SAME(StreamHeader); MB_SAME(CharEncoderDecoder); MB_SAME(CharEncoder); MB_SAME(CharDecoder);
    MB_ROW(_eStorable, L"_Storable"); MB_ROW(_eModuleDescriptorData, L"_ModuleDescriptorData");
    MB_ROW(_eUrelException, L"_UrelException"); MB_ROW(_aStreamException, L"StreamException");
    MB_ROW(_aHeapInfo, L"HeapInfo"); MB_ROW(_eTemplateTypeMatcher, L"TemplateTypeMatcher");
    MB_ROW(_eCandidateMDAnode, L"CandidateMDAnode"); MB_ROW(_InputStream, L"_InputStream");
    MB_ROW(_OutputStream, L"_OutputStream");
#undef MB_SAME
#undef MB_ROW
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].first, rows[i].second) << "row " << i;
}
