# Tests of the options, recent list, configuration and help.
