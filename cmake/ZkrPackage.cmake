# `cpack -G DEB` in the build folder makes a Debian package of what
# `cmake --install` installs, under /usr.
set(CPACK_PACKAGE_NAME zkr-muf)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "ZKR_MUF developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "sporadic-E MUF calculator for DX-cluster spots")
set(CPACK_PACKAGE_INSTALL_DIRECTORY zkr_muf)
set(CPACK_STRIP_FILES ON)

# Debian wants a maintainer; there is no project address to give yet.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "ZKR_MUF developers")
set(CPACK_DEBIAN_PACKAGE_SECTION hamradio)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The libraries come from dpkg-shlibdeps; the Qt platform plugins are loaded
# at run time, so no linker dependency names them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, libqt6sql6-sqlite")
# The country file places calls without a locator; the program goes on
# without it.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "hamradio-files")
# The summary above is the synopsis line; this is the long text below it.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "ZKR_MUF listens to DX-cluster spots (a telnet DX cluster, a web spot list
or a recorded file), finds the Maidenhead locators and propagation-mode
markers in each spot's comment and estimates the sporadic-E critical
frequency, MUF and FOT of the reflecting cloud as seen from your own
station. The results are shown coloured, newest first, in four tabs: all
spots, VHF, 2 m and Es.
.
zkr_muf_cli evaluates recorded sessions, saved web spot pages and live
clusters the same way and prints text or JSON.")

include(CPack)
