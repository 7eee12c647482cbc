! Fortran callers of the Schur drivers with LOGICAL FUNCTION selectors (64-bit default integers and
! logicals): the published names and the library names order the selected eigenvalues first. The matrix
! is upper triangular with eigenvalues 1, -2, 3, -4, 5 and small entries above the diagonal, so the count
! and the order of the selected ones are known. Stops non-zero on a mismatch.
program schur_selectors
  implicit none
  integer, parameter :: n = 5, lwork = 64 * n
  double precision :: a(n, n), b(n, n), wr(n), wi(n), alphar(n), alphai(n), beta(n), vs(n, n), vsr(n, n)
  double precision :: work(lwork), rwork(8 * n)
  complex(kind(1.0d0)) :: za(n, n), zb(n, n), w(n), alpha(n), zbeta(n), zvs(n, n), zvsr(n, n), zwork(lwork)
  logical :: bwork(n)
  integer :: sdim, info, failures, i
  logical, external :: negative_real, negative_pair, negative_complex, negative_complex_pair

  failures = 0
  call test_matrix(a)
  call dgees('V', 'S', negative_real, n, a, n, sdim, wr, wi, vs, n, work, lwork, bwork, info)
  call expect('dgees', info, sdim, wr)
  call test_matrix(a)
  call f08paf('V', 'S', negative_real, n, a, n, sdim, wr, wi, vs, n, work, lwork, bwork, info)
  call expect('f08paf', info, sdim, wr)

  call test_matrix(a)
  za = a
  call zgees('V', 'S', negative_complex, n, za, n, sdim, w, zvs, n, zwork, lwork, rwork, bwork, info)
  call expect('zgees', info, sdim, dble(w))

  call test_matrix(a)
  b = 0
  do i = 1, n
    b(i, i) = 1
  end do
  call dgges('V', 'V', 'S', negative_pair, n, a, n, b, n, sdim, alphar, alphai, beta, vs, n, vsr, n, work, &
             lwork, bwork, info)
  call expect('dgges', info, sdim, alphar / beta)

  call test_matrix(a)
  za = a
  zb = 0
  do i = 1, n
    zb(i, i) = 1
  end do
  call f08xnf('V', 'V', 'S', negative_complex_pair, n, za, n, zb, n, sdim, alpha, zbeta, zvs, n, zvsr, n, &
              zwork, lwork, rwork, bwork, info)
  call expect('f08xnf', info, sdim, dble(alpha / zbeta))

  if (failures /= 0) error stop 1
  print '(a)', '5 passed, 0 failed'

contains

  subroutine test_matrix(m)
    double precision, intent(out) :: m(n, n)
    integer :: i, j
    m = 0
    do j = 1, n
      do i = 1, j - 1
        m(i, j) = 0.1d0 * (i + j)
      end do
      m(j, j) = merge(-1, 1, mod(j, 2) == 0) * dble(j)
    end do
  end subroutine test_matrix

  ! Two of the five eigenvalues (-2, -4) are selected and lead.
  subroutine expect(name, info, sdim, re)
    character(*), intent(in) :: name
    integer, intent(in) :: info, sdim
    double precision, intent(in) :: re(n)
    if (info /= 0 .or. sdim /= 2 .or. any(re(1:2) >= 0) .or. any(re(3:n) <= 0)) then
      print '(a, a, i0, a, i0, a, 5f8.3)', name, ': INFO ', info, ', SDIM ', sdim, ', real parts', re
      failures = failures + 1
    end if
  end subroutine expect
end program schur_selectors

logical function negative_real(wr, wi)
  double precision, intent(in) :: wr, wi
  negative_real = wr < 0 .and. wi == wi
end function negative_real

logical function negative_complex(w)
  complex(kind(1.0d0)), intent(in) :: w
  negative_complex = dble(w) < 0
end function negative_complex

logical function negative_pair(alphar, alphai, beta)
  double precision, intent(in) :: alphar, alphai, beta
  negative_pair = alphar * beta < 0 .and. alphai == alphai
end function negative_pair

logical function negative_complex_pair(alpha, beta)
  complex(kind(1.0d0)), intent(in) :: alpha, beta
  negative_complex_pair = dble(alpha * conjg(beta)) < 0
end function negative_complex_pair
