namespace quimo::jet {}
