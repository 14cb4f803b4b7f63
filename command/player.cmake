# What reads recordings and makes their calls again, for the command and for a test that has a libnq of its own.
set(vorn_mero_player_sources machine.cpp player.cpp player_compare.cpp player_devices.cpp replay_block.cpp
  ../layers/recording_reader.cpp)
list(TRANSFORM vorn_mero_player_sources PREPEND ${PROJECT_SOURCE_DIR}/command/)
