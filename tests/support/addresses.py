"""Addresses that are set aside for examples: nothing made up here can be anyone's.

RFC 5737 (IPv4), RFC 3849 (IPv6), RFC 7042 section 2.1 (MAC); MACs beyond these are locally administered.
"""
_NETWORKS = ("192.0.2", "198.51.100", "203.0.113")

# Each network's first 200 hosts are lasting locators, the rest come and go.
LASTING = [f"{network}.{host}" for network in _NETWORKS for host in range(1, 201)]
PASSING = [f"{network}.{host}" for network in _NETWORKS for host in range(201, 255)]


def ipv6(random):
    return f"2001:db8::{random.randrange(65536):x}"


def unicast_mac(random):
    if random.random() < 0.05:
        return f"00:00:5e:00:53:{random.randrange(256):02x}"
    return "02:" + ":".join(f"{random.randrange(256):02x}" for _ in range(5))


def multicast_mac(random):
    return f"01:00:5e:90:10:{random.randrange(256):02x}"
