namespace quimo::tsql {}
