################################################################################
#
# vorn-input
#
################################################################################

VORN_INPUT_VERSION = 1.0.0
# This folder is part of the sources.
VORN_INPUT_SITE = $(BR2_EXTERNAL_VORN_INPUT_PATH)/../..
VORN_INPUT_SITE_METHOD = local
# The owner has chosen no licence.
VORN_INPUT_REDISTRIBUTE = NO
VORN_INPUT_INSTALL_STAGING = YES
VORN_INPUT_DEPENDENCIES = host-pkgconf log4cplus qt5base
# Buildroot's own options harden. Key maps as files and the workbench need
# toml++, which Buildroot does not have.
VORN_INPUT_CONF_OPTS = \
	-DVORN_INPUT_BUILD_EXAMPLES=OFF \
	-DVORN_INPUT_BUILD_PROFILE=OFF \
	-DVORN_INPUT_BUILD_TESTS=OFF \
	-DVORN_INPUT_BUILD_TOOLS=OFF \
	-DVORN_INPUT_HARDENING=OFF \
	-DVORN_INPUT_INSTALL=ON

ifeq ($(BR2_PACKAGE_VORN_INPUT_SIM),y)
VORN_INPUT_CONF_OPTS += -DVORN_INPUT_BUILD_SIM=ON
else
VORN_INPUT_CONF_OPTS += -DVORN_INPUT_BUILD_SIM=OFF
endif

VORN_INPUT_API_LIBRARY = $(call qstrip,$(BR2_PACKAGE_VORN_INPUT_API_LIBRARY))
ifneq ($(VORN_INPUT_API_LIBRARY),)
VORN_INPUT_CONF_OPTS += -DVORN_INPUT_API_LIBRARY=$(VORN_INPUT_API_LIBRARY)
endif

$(eval $(cmake-package))
