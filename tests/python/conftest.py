from hypothesis import HealthCheck, settings

# A busy machine is no fault of the module.
settings.register_profile("any_machine", deadline=None, suppress_health_check=[HealthCheck.too_slow])
settings.load_profile("any_machine")
