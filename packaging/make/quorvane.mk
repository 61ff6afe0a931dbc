# Runs a script on a linked image as a step of a GNU make build:
#
#   include /usr/share/quorvane/quorvane.mk
#   $(eval $(call quorvane_post_build,stamped.elf,firmware.elf,stamp.js,version=$(VERSION) slot=A,crc patch))
#
# The arguments are the output, the image, the script, the definitions and the libraries; the last two may be
# left out. The script sees the path of the image as the variable `input` and the path that it has to save to as
# `output`. The step runs again when the image, the script, a library or a definition has changed, and at no
# other time; what a failed script leaves of the output is removed. A library is a name (crc) of those that come
# with quorvane, or a file, recognised by a "/" or an ending. As everywhere in make, no word may hold a blank.
#
#   QUORVANE              the program, found on PATH unless set
#   QUORVANE_LIBRARY_DIR  the folder of the library scripts

QUORVANE ?= quorvane
QUORVANE_LIBRARY_DIR ?= $(patsubst %/,%,$(dir $(lastword $(MAKEFILE_LIST))))/lib

quorvane_program := $(if $(findstring /,$(QUORVANE)),$(QUORVANE),$(shell command -v $(QUORVANE)))

# Everything behind a second "=" would be dropped without a word when the program runs.
quorvane_definition_parts = $(words $(subst =,= ,$(1)x))
quorvane_checked_definition = $(strip \
    $(if $(filter 1,$(call quorvane_definition_parts,$(1))),\
        $(error quorvane_post_build: the definition "$(1)" is not of the form name=value))\
    $(if $(filter 2,$(call quorvane_definition_parts,$(1))),,\
        $(error quorvane_post_build: the definition "$(1)" has a second "=", and a definition ends there))\
    $(1))

quorvane_quote = '$(subst ','\'',$(1))'
quorvane_library_file = $(if $(findstring /,$(1))$(suffix $(1)),$(1),$(QUORVANE_LIBRARY_DIR)/$(1).js)
quorvane_scripts = $(foreach library,$(2),$(call quorvane_library_file,$(library))) $(1)
quorvane_words = \
    $(foreach definition,input=$(2) output=$(1) \
        $(foreach definition,$(4),$(call quorvane_checked_definition,$(definition))),\
        -define $(call quorvane_quote,$(definition))) \
    $(foreach script,$(call quorvane_scripts,$(3),$(5)),-load $(call quorvane_quote,$(script)))

# The words of the command are a file as well, which is written when its text is another: a change of a
# definition is a change of a prerequisite.
define quorvane_post_build
$(1): $(2) $(call quorvane_scripts,$(3),$(5)) $(1).words $(quorvane_program)
	@rm -f $$@
	$(QUORVANE) $(call quorvane_words,$(1),$(2),$(3),$(4),$(5)) || { rm -f $$@; exit 1; }
	@test -f $$@ || { echo "$(3) has not saved its output, $$@" >&2; exit 1; }

$(1).words: .quorvane-always
	@mkdir -p $$(@D)
	@printf '%s\n' $(call quorvane_words,$(1),$(2),$(3),$(4),$(5)) | cmp -s - $$@ || \
	    printf '%s\n' $(call quorvane_words,$(1),$(2),$(3),$(4),$(5)) >$$@
endef

.PHONY: .quorvane-always
.quorvane-always:
