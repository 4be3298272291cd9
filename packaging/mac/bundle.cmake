# Makes the program Velloway.app, signed for this machine alone unless VELLOWAY_SIGNING_IDENTITY names a certificate.
# The target "bundle" also puts Qt into it, for other machines; docs/platforms.md says more.
set(VELLOWAY_SIGNING_IDENTITY "-" CACHE STRING "Certificate to sign the bundle with; - signs for this machine alone")
set(mac_packaging ${CMAKE_SOURCE_DIR}/packaging/mac)

add_executable(velloway-render-icons ${mac_packaging}/RenderIcons.cpp)
target_link_libraries(velloway-render-icons PRIVATE Qt6::Gui Qt6::Svg)
set(images ${CMAKE_CURRENT_BINARY_DIR}/images)
set(resources ${images}/StatusIcon.png ${images}/StatusIcon@2x.png ${images}/Velloway.icns)
add_custom_command(OUTPUT ${resources}
    COMMAND velloway-render-icons ${CMAKE_SOURCE_DIR}/src/ui/symbols/StatusIcon.svg ${images}
    COMMAND iconutil --convert icns --output ${images}/Velloway.icns ${images}/Velloway.iconset
    DEPENDS velloway-render-icons ${CMAKE_SOURCE_DIR}/src/ui/symbols/StatusIcon.svg VERBATIM)
set_source_files_properties(${resources} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
target_sources(velloway PRIVATE ${resources})
set_target_properties(velloway PROPERTIES
    MACOSX_BUNDLE ON OUTPUT_NAME Velloway MACOSX_BUNDLE_INFO_PLIST ${mac_packaging}/Info.plist.in)

set(rights ${mac_packaging}/Velloway.entitlements)
set(rights_ad_hoc ${mac_packaging}/VellowayAdHoc.entitlements)
set(rights_of_bundle ${rights})
if(VELLOWAY_SIGNING_IDENTITY STREQUAL "-")
    set(rights_of_bundle ${rights_ad_hoc})
endif()
set(sign codesign --force --deep --options runtime --entitlements ${rights_of_bundle}
    --sign ${VELLOWAY_SIGNING_IDENTITY} $<TARGET_BUNDLE_DIR:velloway>)
# The hardened runtime refuses libraries of others, such as Homebrew's Qt, so it is left to the deployed bundle.
add_custom_command(TARGET velloway POST_BUILD
    COMMAND codesign --force --sign - --entitlements ${rights_ad_hoc} $<TARGET_BUNDLE_DIR:velloway> VERBATIM)
# The signature covers every file of the bundle: a change of one links, and so signs, again.
set(in_bundle ${resources})
list(TRANSFORM in_bundle REPLACE "^.*/" "${CMAKE_CURRENT_BINARY_DIR}/Velloway.app/Contents/Resources/")
set_property(TARGET velloway APPEND PROPERTY LINK_DEPENDS
    ${in_bundle} ${mac_packaging}/Info.plist.in ${rights_ad_hoc})
find_program(MACDEPLOYQT macdeployqt HINTS ${Qt6_DIR}/../../../bin)
add_custom_target(bundle
    COMMAND ${MACDEPLOYQT} $<TARGET_BUNDLE_DIR:velloway> -qmldir=${CMAKE_SOURCE_DIR}/src/ui
    COMMAND ${sign} DEPENDS velloway VERBATIM)
