# Writes the linkers' export lists from one table of names and argument sizes.
#
# rastrel_export_lists(TABLE OUTPUT_FOLDER) writes into the folder
#   rastrel.map       the ELF version script: these names and nothing else
#   rastrel.def       the DLL's exports, as the 32-bit or the 64-bit linker takes them
#   rastrel_lib.def   what the import library is made from

function(rastrel_export_lists table folder)
  file(STRINGS ${table} lines REGEX "^[^#]")
  set(map "{\n  global:\n")
  set(def "LIBRARY rastrel.dll\nEXPORTS\n")
  set(lib "LIBRARY rastrel.dll\nEXPORTS\n")
  foreach(line IN LISTS lines)
    string(REPLACE " " ";" fields ${line})
    list(GET fields 0 name)
    list(GET fields 1 bytes)
    string(APPEND map "    ${name};\n")
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      # The compiler's symbol is _name@bytes; the name in a .def drops the underscore. Both forms
      # are exported, for hosts that were linked by decorated names and for those that look plain
      # ones up.
      string(APPEND def "  _${name}@${bytes} = ${name}@${bytes}\n  ${name} = ${name}@${bytes}\n")
      string(APPEND lib "  ${name}@${bytes}\n")
    else()
      string(APPEND def "  ${name}\n")
      string(APPEND lib "  ${name}\n")
    endif()
  endforeach()
  string(APPEND map "  local: *;\n};\n")
  file(CONFIGURE OUTPUT ${folder}/rastrel.map CONTENT "${map}" @ONLY)
  file(CONFIGURE OUTPUT ${folder}/rastrel.def CONTENT "${def}" @ONLY)
  file(CONFIGURE OUTPUT ${folder}/rastrel_lib.def CONTENT "${lib}" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${table})
endfunction()
