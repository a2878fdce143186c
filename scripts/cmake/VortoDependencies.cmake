# SPDX-License-Identifier: BSD-3-Clause
find_package(PkgConfig REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(Imath REQUIRED)
pkg_check_modules(expat REQUIRED IMPORTED_TARGET expat)
pkg_check_modules(hwy REQUIRED IMPORTED_TARGET libhwy)
# Headers alone: libEGL is loaded at run time, when the graphics device is first looked at.
pkg_check_modules(egl REQUIRED IMPORTED_TARGET egl)
if(VORTO_EDITORS)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets UiTools Svg)
endif()
