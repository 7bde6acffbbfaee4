# The library's sources, by folder.
set(MODELBRIDGE_SOURCES
  runtime/Any.cpp
  runtime/Failure.cpp
  runtime/Pool.cpp
  runtime/StringUtils.cpp
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
)
list(TRANSFORM MODELBRIDGE_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
