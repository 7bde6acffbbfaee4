# modelbridge_generate(TARGET name MODEL file OUTPUT_DIR dir [OPTIONS option...])
#
# A target, built by default, that brings OUTPUT_DIR up to date with the classes of MODEL
# whenever the model changes: modelbridge-gen updates the folder, so what was written in the
# generated files stays and the model's changes land; a merge in conflict fails the build and
# leaves the file alone. OPTIONS go to modelbridge-gen as they are (--class, --single,
# --specified, --line-width, ...). A relative MODEL is taken from the current source folder, a
# relative OUTPUT_DIR from the current binary folder. The files the target writes are its
# property MODELBRIDGE_OUTPUTS; the build configures again when the model changes, so that the
# list follows the model.
function(modelbridge_generate)
  cmake_parse_arguments(PARSE_ARGV 0 MB "" "TARGET;MODEL;OUTPUT_DIR" "OPTIONS")
  foreach(required TARGET MODEL OUTPUT_DIR)
    if(NOT MB_${required})
      message(FATAL_ERROR "modelbridge_generate: ${required} is missing")
    endif()
  endforeach()
  if(NOT ModelBridge_GENERATOR)
    message(FATAL_ERROR "modelbridge_generate: the program modelbridge-gen was not found")
  endif()
  get_filename_component(model "${MB_MODEL}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
  get_filename_component(folder "${MB_OUTPUT_DIR}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")
  execute_process(
    COMMAND "${ModelBridge_GENERATOR}" "${model}" -q -o "${folder}" --list-outputs ${MB_OPTIONS}
    OUTPUT_VARIABLE outputs ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "modelbridge_generate: modelbridge-gen can't read ${model}:\n${errors}")
  endif()
  string(REPLACE "\n" ";" outputs "${outputs}")
  list(REMOVE_ITEM outputs "")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${model}")
  set(stamp "${CMAKE_CURRENT_BINARY_DIR}/${MB_TARGET}.modelbridge-stamp")
  add_custom_command(
    OUTPUT "${stamp}"
    BYPRODUCTS ${outputs}
    COMMAND "${ModelBridge_GENERATOR}" "${model}" -q -o "${folder}" ${MB_OPTIONS}
    COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
    DEPENDS "${model}"
    COMMENT "Updating ${MB_OUTPUT_DIR} from ${MB_MODEL}"
    VERBATIM)
  add_custom_target(${MB_TARGET} ALL DEPENDS "${stamp}")
  set_target_properties(${MB_TARGET} PROPERTIES MODELBRIDGE_OUTPUTS "${outputs}")
endfunction()
