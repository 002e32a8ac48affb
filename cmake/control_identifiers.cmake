# The control's identifiers, read from encode/identifiers.h (where they are
# written once) and braced in upper case as the registry and manifests
# spell them: FE_CLSID, FE_LIBID, FE_IID_INTERFACE, FE_IID_EVENTS.
file(STRINGS ${PROJECT_SOURCE_DIR}/encode/identifiers.h fe_identifier_lines
     REGEX "^#define FE_UUID_[A-Z_]+ \"[0-9a-f-]+\"")
foreach(line IN LISTS fe_identifier_lines)
  string(REGEX REPLACE "^#define FE_UUID_([A-Z_]+) \"([0-9a-f-]+)\"" "\\1;\\2" pair "${line}")
  list(GET pair 0 name)
  list(GET pair 1 uuid)
  string(TOUPPER "{${uuid}}" braced)
  set(fe_uuid_${name} ${braced})
endforeach()
set(FE_CLSID ${fe_uuid_CLASS})
set(FE_LIBID ${fe_uuid_LIBRARY})
set(FE_IID_INTERFACE ${fe_uuid_INTERFACE})
set(FE_IID_EVENTS ${fe_uuid_EVENTS})
if(NOT FE_CLSID OR NOT FE_LIBID OR NOT FE_IID_INTERFACE OR NOT FE_IID_EVENTS)
  message(FATAL_ERROR "encode/identifiers.h does not define every control identifier")
endif()
