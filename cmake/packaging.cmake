# make deb: three Debian packages from the installed components, as Debian
# splits a library: the runtime library (named for its SONAME), its -dev
# package and the tool.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME fileencoder)
set(CPACK_PACKAGE_VENDOR "Orvane")
set(CPACK_PACKAGE_CONTACT "FileEncoder developers <fileencoder@orvane.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development tool)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(fe_runtime_package libfileencoder${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${fe_runtime_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# The library's own dependencies (zlib, bzip2, liblzma, ICU, OpenSSL, GMP)
# from dpkg-shlibdeps, and a shlibs file for the programs built against it.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libfileencoder-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME fileencoder)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1")

# The first line of each is the package's summary.
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "FileEncoder engine library
The engine of the FileEncoder control as a C library: Base64, quoted-printable,
URL, UTF-7, Base32, Base58, Base85, Z85, uuencode and yEnc; Deflate, bzip2 and
LZMA files; AES-256 password encryption; digests, tokens, UUIDs and text filters.")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "FileEncoder engine library - development files
The C header, the pkg-config file fileencoder.pc and the CMake package
FileEncoder (imported target FileEncoder::fileencoder).")
set(CPACK_DEBIAN_TOOL_DESCRIPTION "encode, decode, compress and encrypt files from the command line
fileencoder reads and writes the same files as the FileEncoder control:
data and file encodings, compression, password encryption, digests, tokens,
UUIDs and text filters.")
include(CPack)
cpack_add_component(library)
cpack_add_component(development DEPENDS library)
cpack_add_component(tool DEPENDS library)
