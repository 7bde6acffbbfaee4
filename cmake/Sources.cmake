# The library's sources, by folder. The folders are fixed by the design, names included:
# Generated/ holds the importer, the parser and its stack beside the emitted tables, though only
# GrcParse is written by a program. facade/ holds the standard-typed C++ facade and the C API
# whose headers are under include/modelbridge/.
set(MODELBRIDGE_SOURCES
  runtime/Any.cpp
  runtime/Failure.cpp
  runtime/Heap.cpp
  runtime/ModuleDescriptor.cpp
  runtime/Pool.cpp
  runtime/Release.cpp
  runtime/Profiler.cpp
  runtime/StorageStream.cpp
  runtime/StringUtils.cpp
  runtime/SystemModules.cpp
  runtime/TypeInfo.cpp
  runtime/UrelException.cpp
  facade/LibraryLock.cpp
  facade/Model.cpp
  facade/CApi.cpp
  environment/DirectoryListings.cpp
  environment/Environment.cpp
  environment/FileName.cpp
  environment/FileStats.cpp
  environment/ModuleVersion.cpp
  environment/Paths.cpp
  environment/PlatformText.cpp
  environment/Time.cpp
  Generated/GrcParse.cpp
  Generated/Location.cpp
  Generated/ParseTables.cpp
  Generated/Parser.cpp
  Generated/StackValue.cpp
  Generated/XMLError.cpp
  Generated/XMLImporter.cpp
  Generated/XMLParser.cpp
  output/ReservedWords.cpp
  output/TarvaneElements.cpp
  output/TarvaneOutput.cpp
  xml/XMLLex.cpp
  xml/TextEncodings.cpp
  xml/XMLcontent.cpp
  xml/XMLDocument.cpp
  xml/XMLValues.cpp
  xml/XMLNames.cpp
  xmi/ClassRenderer.cpp
  xmi/Context.cpp
  xmi/ModelReader.cpp
  xmi/ModelNames.cpp
  xmi/ModelReport.cpp
  xmi/TypeLibraries.cpp
  xmi/XMLDictionary.cpp
  xmi/XMLElement.cpp
  xmi/Xmi1Reader.cpp
  xmi/Xmi2Reader.cpp
  xmi/XmiHelpers.cpp
)
list(TRANSFORM MODELBRIDGE_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
