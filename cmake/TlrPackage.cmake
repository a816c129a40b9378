# The packages, made by CPack from the install rules: a .tar.gz and a .deb, both of the
# project's version. "cpack" in the build directory makes both (scripts/package does it all).
set(CPACK_PACKAGE_NAME em_tlraid)
set(CPACK_PACKAGE_VENDOR "em_tlraid developers")
set(CPACK_PACKAGE_CONTACT "em_tlraid developers <root@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "RAID extension module of the server-management agent, with its host simulator")
set(CPACK_PACKAGE_DESCRIPTION
    "em_tlraid.so, the RAID extension module, for use away from its target host, with emhost, \
which loads and drives it as the agent daemon does, tlrcd-sim, a simulator of the RAID \
manager's REST daemon, and tlr-sandbox, a private test host to run them in.")
set(CPACK_GENERATOR "TGZ;DEB")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})

# Debian: the package's name may not hold "_"; the libraries' packages come from
# dpkg-shlibdeps, the programs that the sandbox script calls are named here.
set(CPACK_DEBIAN_PACKAGE_NAME em-tlraid)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "bash, util-linux, mount, iproute2")

include(CPack)
