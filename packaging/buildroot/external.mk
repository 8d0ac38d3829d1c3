include $(sort $(wildcard $(BR2_EXTERNAL_VORN_INPUT_PATH)/package/*/*.mk))
