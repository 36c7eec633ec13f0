"""What the tests of whole processes stand on: a private OVSDB server, a client, made-up databases and their projection.

Nothing here shares code with the system under test: the client, the generator and the projection are its judges.
"""
