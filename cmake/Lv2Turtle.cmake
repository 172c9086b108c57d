# SPDX-License-Identifier: AGPL-3.0-or-later
# Run after the framework's helper has written the LV2 bundle's Turtle files (cmake -P, BUNDLE and
# URI set): corrects the few statements that lv2_validate rejects. Nothing here changes what a host
# loads or how the plug-in behaves.
foreach(name manifest dsp ui)
  file(READ "${BUNDLE}/${name}.ttl" ${name})
endforeach()

# The one host program (the framework lists each of the plug-in's programs as a preset): its state
# key is a property no vocabulary defines, and the library of presets is the plug-in's own anyway.
string(REGEX REPLACE "\n<[^>\n]*:preset1>.*$" "\n" manifest "${manifest}")

# doap:maintainer and doap:release belong to a doap:Project; an empty e-mail address is no address.
string(REPLACE "\ta lv2:InstrumentPlugin ;" "\ta lv2:InstrumentPlugin , doap:Project ;" dsp "${dsp}")
string(REPLACE "\t\tfoaf:mbox <> ;\n" "" dsp "${dsp}")

# The options interface is extension data, not a feature; "no user resize" is a feature, not data.
string(REPLACE "\t\tui:resize ,\n\t\topts:interface ,\n\t\topts:options ;" "\t\tui:resize ,\n\t\topts:options ;" ui "${ui}")
string(REPLACE "\t\tui:noUserResize ,\n" "" ui "${ui}")

foreach(name manifest dsp ui)
  file(WRITE "${BUNDLE}/${name}.ttl" "${${name}}")
endforeach()
